#include "platform/linux/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

namespace {

/// How often the clipboard is claimed. X11 refuses a claim that is older than another program's of
/// which we have not heard yet; by the next one we have.
constexpr int kTurns = 3;

} // namespace

bool QtPasteboard::writeText(const QString &text)
{
    QClipboard *const clipboard = QGuiApplication::clipboard();
    for (int turn = 0; turn < kTurns; ++turn) {
        auto content = std::make_unique<QMimeData>();
        content->setText(text);
        const QMimeData *const ours = content.get();
        clipboard->setMimeData(content.release()); // The clipboard owns it.
        // Asks the display who owns the clipboard; ownsClipboard() only knows that we have tried.
        if (clipboard->mimeData() == ours)
            return true;
    }
    return false;
}
