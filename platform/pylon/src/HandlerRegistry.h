#pragma once

#include <pylon/EventHandlers.h>

#include <mutex>
#include <vector>

namespace Pylon {

inline void tellRegistered(CImageEventHandler& handler, CInstantCamera& camera)
{
    handler.OnImageEventHandlerRegistered(camera);
}
inline void tellRegistered(CConfigurationEventHandler& handler, CInstantCamera& camera)
{
    handler.OnConfigurationRegistered(camera);
}
inline void tellDeregistered(CImageEventHandler& handler, CInstantCamera& camera)
{
    handler.OnImageEventHandlerDeregistered(camera);
}
inline void tellDeregistered(CConfigurationEventHandler& handler, CInstantCamera& camera)
{
    handler.OnConfigurationDeregistered(camera);
}
inline void destroy(CImageEventHandler& handler)
{
    handler.DestroyImageEventHandler();
}
inline void destroy(CConfigurationEventHandler& handler)
{
    handler.DestroyConfiguration();
}

/// The handlers of one kind that a camera has. Handlers are called inside of the lock, so that none runs any
/// more when its deregistration returns; the lock is recursive, for handlers that deregister themselves.
template <typename Handler> class HandlerRegistry {
public:
    explicit HandlerRegistry(CInstantCamera& camera)
        : m_camera(camera)
    {
    }
    HandlerRegistry(const HandlerRegistry&) = delete;
    HandlerRegistry& operator=(const HandlerRegistry&) = delete;
    ~HandlerRegistry() { removeAll(); }

    void add(Handler* handler, ERegistrationMode mode, ECleanup cleanup)
    {
        if (handler == nullptr)
            throw GenICam::InvalidArgumentException("The event handler must not be null.");
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        if (mode == RegistrationMode_ReplaceAll)
            removeAll();
        m_entries.push_back({ handler, cleanup });
        ++handler->m_registrations;
        tellRegistered(*handler, m_camera);
    }

    /// False when it is not registered.
    bool remove(const Handler* handler)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            if (m_entries[i].handler == handler) {
                removeAt(i);
                return true;
            }
        }
        return false;
    }

    template <typename Call> void forEach(Call&& call)
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        for (std::size_t i = 0; i < m_entries.size(); ++i) // handlers may come and go meanwhile
            call(*m_entries[i].handler);
    }

private:
    struct Entry {
        Handler* handler = nullptr;
        ECleanup cleanup = Cleanup_None;
    };

    void removeAll()
    {
        const std::lock_guard<std::recursive_mutex> lock(m_mutex);
        while (!m_entries.empty())
            removeAt(m_entries.size() - 1);
    }

    void removeAt(std::size_t index)
    {
        const Entry entry = m_entries[index];
        m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(index));
        --entry.handler->m_registrations;
        tellDeregistered(*entry.handler, m_camera);
        if (entry.cleanup == Cleanup_Delete)
            destroy(*entry.handler);
    }

    CInstantCamera& m_camera;
    std::recursive_mutex m_mutex;
    std::vector<Entry> m_entries;
};

} // namespace Pylon
