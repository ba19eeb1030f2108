#include "app/reply_walk.h"

#include "app/reply_table.h"

#include <QStringList>

void walkReplies(const QString& text, protocol_Controller_info& info,
    const std::function<void(const QString& version)>& showVersion, const std::function<void()>& act)
{
    const QStringList pieces = text.split("$");
    bool dispatched = false;
    for (int i = 1; i < pieces.size(); ++i) {
        const QString frame = "$" + pieces[i];
        const ReplyRow* row = findReply(frame);
        const bool recognised = row != nullptr && fillProtocolInfo(*row, frame, info);
        if (!recognised && row != nullptr && row->cut == ValueCut::Version)
            showVersion(versionText(frame));
        dispatched = dispatched || recognised;
        if (dispatched)
            act();
    }
}
