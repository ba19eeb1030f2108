#pragma once

#include <QByteArray>
#include <QString>

/// The steps by which a settings file changes without ever being half-written. Each blocks for the length of
/// its file access and returns false when it could not be done; nothing is kept between calls.
namespace settings_file {

/// Reads the whole file; a missing file has no text.
bool read(const QString& file, QByteArray& text);

/// Stores the key in `text`, the text of the file, by the settings layer. That layer works on files alone,
/// writes a file short without a word when the disk runs full, and keeps what it could not write for its next
/// access to the same name. So it gets a scratch copy beside the file, under a name that is never used again,
/// and what it has written there is read back and compared.
bool storeKey(
    const QString& file, const QString& group, const QString& key, const QString& value, QByteArray& text);

/// Puts the text in the file's place in one step and makes it durable. The time stamp grows by at least a
/// millisecond, also under a clock that was set back: the settings layer takes a file of the same size and
/// time for unchanged.
bool replace(const QString& file, const QByteArray& text);

} // namespace settings_file
