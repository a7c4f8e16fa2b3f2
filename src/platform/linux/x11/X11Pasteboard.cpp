#include "platform/linux/x11/X11Pasteboard.h"

#include "base/Log.h"
#include "platform/linux/ClipboardContent.h"
#include "platform/linux/x11/X11SelectionReader.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// How often the clipboard is claimed. X11 refuses a claim that is older than another program's of
/// which we have not heard yet; by the next one we have.
constexpr int kTurns = 3;

constexpr auto kPatienceWithOwner = 2s;
constexpr auto kPatienceWithManager = 1s;

constexpr char kClipboard[] = "CLIPBOARD";

class X11ClipboardSource final : public ClipboardSource {
public:
    explicit X11ClipboardSource(std::unique_ptr<X11SelectionReader> reader)
        : m_reader(std::move(reader))
    {
    }

    QCoro::Task<std::optional<QStringList>> types() override
    {
        m_owner = m_reader->owner(kClipboard);
        if (m_owner == XCB_WINDOW_NONE)
            co_return QStringList();
        const std::optional<QByteArray> atoms = co_await answer("TARGETS");
        if (!atoms)
            co_return std::nullopt;
        co_return m_reader->atomNames(*atoms);
    }

    QCoro::Task<std::optional<QByteArray>> data(QString type) override
    {
        co_return co_await answer(type.toLatin1());
    }

private:
    /// Absent as well if the clipboard has changed hands: what is a secret of the new owner's the
    /// former one has not said.
    QCoro::Task<std::optional<QByteArray>> answer(QByteArray target)
    {
        const auto answer = co_await m_reader->convert(kClipboard, target, kPatienceWithOwner);
        if (!answer || m_reader->owner(kClipboard) != m_owner)
            co_return std::nullopt;
        co_return answer->data;
    }

    std::unique_ptr<X11SelectionReader> m_reader;
    xcb_window_t m_owner = XCB_WINDOW_NONE; ///< When the types were asked for.
};

/// Null if the application does not run on an X display.
std::unique_ptr<X11SelectionReader> openReader()
{
    // Another display's clipboard, such as the one of X programs under Wayland, is not the user's.
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()
        ? X11SelectionReader::open()
        : nullptr;
}

} // namespace

std::unique_ptr<PasteboardContent> X11Pasteboard::content()
{
    std::unique_ptr<X11SelectionReader> reader = openReader();
    return std::make_unique<ClipboardContent>(
        reader ? std::make_unique<X11ClipboardSource>(std::move(reader)) : nullptr);
}

QCoro::Task<bool> X11Pasteboard::writeText(QString text)
{
    QClipboard *const clipboard = QGuiApplication::clipboard();
    for (int turn = 0; turn < kTurns; ++turn) {
        auto content = std::make_unique<QMimeData>();
        content->setText(text);
        const QMimeData *const ours = content.get();
        clipboard->setMimeData(content.release()); // The clipboard owns it.
        // Asks the display who owns the clipboard; ownsClipboard() only knows that we have tried.
        if (clipboard->mimeData() == ours)
            co_return true;
    }
    co_return false;
}

QCoro::Task<> X11Pasteboard::handOver()
{
    QClipboard *const clipboard = QGuiApplication::clipboard();
    const std::unique_ptr<X11SelectionReader> reader =
        clipboard->ownsClipboard() ? openReader() : nullptr;
    if (!reader || reader->owner("CLIPBOARD_MANAGER") == XCB_WINDOW_NONE)
        co_return;
    const auto answer =
        co_await reader->convert("CLIPBOARD_MANAGER", "SAVE_TARGETS", kPatienceWithManager);
    if (answer)
        co_return;
    Log::line(u"⚠️ The clipboard manager does not answer, the clipboard is lost"_s);
    // The toolkit would ask it once more when the application ends, and wait for five seconds.
    if (clipboard->ownsClipboard())
        clipboard->clear();
}
