#pragma once

#include <string>

/// Texts and exceptions of the stand-in, under the names of pylon 5. The versioned namespace is part of them.
namespace GenICam_3_0_Basler_pylon_v5_0 {

/// A text of the library.
class gcstring {
public:
    gcstring() = default;
    gcstring(const char* text) // NOLINT(google-explicit-constructor): texts convert as in the library
        : m_text(text == nullptr ? "" : text)
    {
    }
    gcstring(const std::string& text) // NOLINT(google-explicit-constructor)
        : m_text(text)
    {
    }
    const char* c_str() const noexcept { return m_text.c_str(); }
    size_t size() const noexcept { return m_text.size(); }
    bool empty() const noexcept { return m_text.empty(); }
    operator const char*() const noexcept { return m_text.c_str(); } // NOLINT(google-explicit-constructor)

private:
    std::string m_text;
};

inline bool operator==(const gcstring& left, const gcstring& right)
{
    return std::string(left.c_str()) == right.c_str();
}
inline bool operator==(const gcstring& left, const char* right)
{
    return std::string(left.c_str()) == right;
}

/// What every failing call throws. Not derived from std::exception, as in the library.
class GenericException {
public:
    explicit GenericException(const std::string& description)
        : m_description(description)
    {
    }
    GenericException(const GenericException&) = default;
    GenericException& operator=(const GenericException&) = default;
    virtual ~GenericException() = default;
    virtual const char* GetDescription() const noexcept { return m_description.c_str(); }
    virtual const char* what() const noexcept { return m_description.c_str(); }

private:
    std::string m_description;
};

/// The kinds of failure that callers may tell apart.
class AccessException : public GenericException {
    using GenericException::GenericException;
};
class InvalidArgumentException : public GenericException {
    using GenericException::GenericException;
};
class LogicalErrorException : public GenericException {
    using GenericException::GenericException;
};
class OutOfRangeException : public GenericException {
    using GenericException::GenericException;
};
class RuntimeException : public GenericException {
    using GenericException::GenericException;
};
class TimeoutException : public GenericException {
    using GenericException::GenericException;
};

} // namespace GenICam_3_0_Basler_pylon_v5_0
namespace GenICam = GenICam_3_0_Basler_pylon_v5_0;
