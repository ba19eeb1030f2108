// What comes over the serial line: from the bytes of single reads to the actions that the window is asked
// for. The input is the line's bytes; a byte 0xFF, which no board sends, parts two reads.
#include "app/reply_table.h"
#include "app/reply_walk.h"
#include "link/reply_text.h"
#include "tests/fuzz/require.h"

#include <QList>

#include <cstring>

namespace {

constexpr char kReadEnd = '\xFF';

/// The reply texts of all reads, in the order in which the link delivers them.
QList<QByteArray> delivered(const QList<QByteArray>& reads)
{
    QList<QByteArray> replies;
    QByteArray buffer;
    for (const QByteArray& read : reads) {
        const QByteArray reply = reply_text::take(buffer, read);
        REQUIRE(reply.isEmpty() || (reply.endsWith("\r\n") && buffer.isEmpty()));
        REQUIRE(!buffer.endsWith("\r\n"));
        if (!reply.isEmpty())
            replies << reply;
    }
    QByteArray all = buffer;
    for (int i = replies.size() - 1; i >= 0; --i)
        all.prepend(replies[i]);
    REQUIRE(all == reads.join()); // nothing is lost, and nothing comes twice
    return replies;
}

bool isKnownFunction(std::int32_t function)
{
    return (function >= 0 && function <= 4) || (function >= 8 && function <= 11 && function != 10);
}

void walk(const QString& text, protocol_Controller_info& info)
{
    int actions = 0;
    int versions = 0;
    const auto showVersion = [&versions](const QString& version) {
        ++versions;
        REQUIRE(!version.contains('\r') && !version.contains('#') && !version.contains('$'));
    };
    const auto act = [&actions, &info] {
        ++actions;
        REQUIRE(info.device >= PROTOCOL_MAIN && info.device <= PROTOCOL_FILTER);
        REQUIRE(isKnownFunction(info.function));
    };
    walkReplies(text, info, showVersion, act);
    REQUIRE(actions <= text.count('$') && versions <= text.count("$OK#A#VER"));
    REQUIRE(actions == 0 || text.contains("$OK#"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray line(reinterpret_cast<const char*>(bytes), static_cast<int>(size));
    // The record outlives a reply, as the window's does.
    protocol_Controller_info info;
    for (const QByteArray& reply : delivered(line.split(kReadEnd))) {
        const QString text = reply_text::upToNul(reply);
        REQUIRE(text.size() == static_cast<int>(std::strlen(reply.constData())));
        REQUIRE(!text.contains("$OK#A#VER") || reply_text::isFromBoard(reply));
        walk(text, info);
    }
    return 0;
}
