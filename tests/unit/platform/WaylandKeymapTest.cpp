#include "platform/linux/wayland/WaylandKeymap.h"

#include "base/UniqueFd.h"
#include "platform/linux/wayland/WaylandKeymapReader.h"
#include "support/TestMain.h"

#include <QTemporaryDir>
#include <QTest>

#include <linux/input-event-codes.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// XKB numbers the positions of keys from here on.
constexpr std::uint32_t kFirstKeycode = 8;
constexpr std::uint32_t kShift = 1;
constexpr std::uint32_t kControl = 4;
constexpr std::uint32_t kNumLock = 16;

/// The text of a keymap as a compositor hands it out.
QByteArray textOf(const char *layouts)
{
    xkb_context *const context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names names{
        .rules = "evdev", .model = "pc105", .layout = layouts, .variant = "", .options = ""};
    xkb_keymap *const keymap =
        xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS);
    char *const text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    const QByteArray copy(text);
    std::free(text);
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
    return copy;
}

WaylandKeymap keymapOf(const char *layouts)
{
    return WaylandKeymap::fromText(textOf(layouts)).value();
}

/// A compositor that hangs, and has no room for one more client.
class FullSocket {
public:
    explicit FullSocket(const QByteArray &path) : m_server(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), std::begin(address.sun_path));
        const auto *const name = reinterpret_cast<const sockaddr *>(&address);
        ::bind(m_server.get(), name, sizeof address);
        ::listen(m_server.get(), 0);
        do
            m_clients.emplace_back(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0));
        while (::connect(m_clients.back().get(), name, sizeof address) == 0);
    }

private:
    UniqueFd m_server;
    std::vector<UniqueFd> m_clients;
};

} // namespace

class WaylandKeymapTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void compositorThatHangsHoldsNobodyUp()
    {
        const QTemporaryDir folder;
        const QByteArray path = QFile::encodeName(folder.filePath(u"full"_s));
        const FullSocket socket(path);
        qputenv("WAYLAND_DISPLAY", path);
        QVERIFY(!WaylandKeymapReader::read(std::chrono::milliseconds(100)));
        qunsetenv("WAYLAND_DISPLAY");
    }

    void plainCharacterIsThatOfTheLayoutInUse_data()
    {
        QTest::addColumn<QByteArray>("layouts");
        QTest::addColumn<quint32>("position");
        QTest::addColumn<quint32>("keysym");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<QString>("character");
        const auto row = [](const char *name, const char *layouts, quint32 position, quint32 keysym,
                            quint32 modifiers, const QString &character) {
            QTest::newRow(name) << QByteArray(layouts) << position << keysym << modifiers
                                << character;
        };
        row("letter", "us", KEY_U, XKB_KEY_u, kControl, u"u"_s);
        row("capital", "us", KEY_U, XKB_KEY_U, kControl | kShift, u"u"_s);
        row("shifted digit", "us", KEY_1, XKB_KEY_exclam, kShift, u"1"_s);
        row("second layout", "us,de", KEY_Y, XKB_KEY_z, kControl, u"z"_s);
        row("first layout", "us,de", KEY_Y, XKB_KEY_y, kControl, u"y"_s);
        row("second layout, shifted", "us,de", KEY_2, XKB_KEY_quotedbl, kShift, u"2"_s);
        row("another script", "us,ru", KEY_U, XKB_KEY_Cyrillic_ghe, kControl, u"г"_s);
        row("number", "us", KEY_KP1, XKB_KEY_KP_1, kNumLock | kControl, u"1"_s);
        row("types nothing", "us", KEY_F1, XKB_KEY_F1, kControl, QString());
    }

    void plainCharacterIsThatOfTheLayoutInUse()
    {
        QFETCH(const QByteArray, layouts);
        QFETCH(const quint32, position);
        QFETCH(const quint32, keysym);
        QFETCH(const quint32, modifiers);
        QFETCH(const QString, character);
        QCOMPARE(keymapOf(layouts.constData())
                     .plainCharacter(position + kFirstKeycode, keysym, modifiers),
                 std::optional(character));
    }

    void symbolOfNoLayoutTellsNothing()
    {
        QCOMPARE(keymapOf("us").plainCharacter(KEY_U + kFirstKeycode, XKB_KEY_Cyrillic_ghe, 0),
                 std::nullopt);
    }

    void shiftedIsWhatEveryLayoutMakesOfIt()
    {
        QCOMPARE(keymapOf("us").shifted(u'1'), u"!"_s);
        QCOMPARE(keymapOf("us").shifted(u'['), u"{"_s);
        QCOMPARE(keymapOf("us,de").shifted(u'2'), u"@\""_s);
        QCOMPARE(keymapOf("fr").shifted(u'1'), QString()); // There, Shift makes it.
    }

    void nonsenseIsNoKeymap()
    {
        qputenv("XKB_LOG_LEVEL", "critical");
        QVERIFY(!WaylandKeymap::fromText("nonsense"));
        QVERIFY(!WaylandKeymap::fromText({}));
    }
};

TESSERY_TEST_MAIN(QCoreApplication, WaylandKeymapTest)
#include "WaylandKeymapTest.moc"
