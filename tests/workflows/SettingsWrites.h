#pragma once

#include <QStringList>

/// Records, for as long as it lives, what each write to the settings file changed: the file itself does not
/// tell in which order its keys came. One at a time; GUI thread.
class SettingsWrites {
public:
    SettingsWrites();
    ~SettingsWrites();
    SettingsWrites(const SettingsWrites&) = delete;
    SettingsWrites& operator=(const SettingsWrites&) = delete;

    /// One entry a write, in order: "Group/Key=value", more of them with ", " between them where a write
    /// changed several keys, and an empty one for a write that changed nothing.
    const QStringList& changes() const { return m_changes; }

    /// The file has come into its place anew.
    void add();

private:
    QStringList m_before;
    QStringList m_changes;
};
