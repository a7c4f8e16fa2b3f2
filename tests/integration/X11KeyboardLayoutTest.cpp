#include "platform/linux/x11/X11KeyboardLayout.h"

#include "support/ApplicationDisplay.h"
#include "support/TestMain.h"
#include "ui/settings/ShortcutRecorder.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

// Real keys on a real X server, in layouts of several countries.

namespace {

constexpr auto kKeyOf2 = "11";
constexpr auto kKeyOfU = "30";
constexpr auto kKeyOfY = "29";
constexpr auto kKeyOfSemicolon = "47";
constexpr auto kKeypad1 = "87";

} // namespace

class X11KeyboardLayoutTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void keyIsRecordedAsItTypesWithoutModifiers_data();
    void keyIsRecordedAsItTypesWithoutModifiers();
    void layoutThatChangesIsFollowed();
    void keyThatTypesNothingIsNotRecorded_data();
    void keyThatTypesNothingIsNotRecorded();
    void keypadTypesDigitsWithNumLock();
    void keysReachNoFieldWhileRecording();
    void eventThatIsNoKeyOfTheServersIsNotLookedUp();

private:
    static void run(const QString &program, const QStringList &arguments);
    /// Presses and releases key with the modifiers held; all as xdotool names them.
    static void press(const QStringList &modifiers, const QString &key);
    void waitForRecording(qsizetype changes) { QTRY_COMPARE(m_changes->size(), changes); }
    QString recordedKey() const { return m_recorder->recorded()->key; }

    X11KeyboardLayout m_layout;
    std::unique_ptr<QLineEdit> m_field;
    std::unique_ptr<ShortcutRecorder> m_recorder;
    std::unique_ptr<QSignalSpy> m_changes;
};

void X11KeyboardLayoutTest::initTestCase()
{
    m_field = std::make_unique<QLineEdit>();
    m_field->show();
    m_field->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_field.get()));
}

void X11KeyboardLayoutTest::init()
{
    TestSurroundings::failOnWarnings();
    m_recorder = std::make_unique<ShortcutRecorder>(m_layout);
    m_recorder->setRecording(true);
    m_changes = std::make_unique<QSignalSpy>(m_recorder.get(), &ShortcutRecorder::changed);
}

void X11KeyboardLayoutTest::cleanup()
{
    m_changes.reset();
    m_recorder.reset();
    m_field->clear();
    run(u"setxkbmap"_s, {u"us"_s});
}

void X11KeyboardLayoutTest::run(const QString &program, const QStringList &arguments)
{
    QCOMPARE(QProcess::execute(program, arguments), 0);
}

void X11KeyboardLayoutTest::press(const QStringList &modifiers, const QString &key)
{
    QStringList arguments;
    for (const QString &modifier : modifiers)
        arguments << u"keydown"_s << modifier;
    arguments << u"key"_s << key;
    for (const QString &modifier : modifiers)
        arguments << u"keyup"_s << modifier;
    run(u"xdotool"_s, arguments);
}

void X11KeyboardLayoutTest::keyIsRecordedAsItTypesWithoutModifiers_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("modifiers");
    QTest::addColumn<QString>("recorded");
    struct Key {
        const char *layout;
        const char *key;
        QString recorded;
    };
    const Key keys[] = {
        {"us", kKeyOf2, u"2"_s}, {"us", kKeyOfU, u"u"_s}, {"us", kKeyOfSemicolon, u";"_s},
        {"de", kKeyOf2, u"2"_s}, {"de", kKeyOfY, u"z"_s}, {"de", kKeyOfSemicolon, u"ö"_s},
        {"fr", kKeyOf2, u"é"_s}, {"fr", kKeyOfU, u"u"_s}, {"fr", kKeyOfSemicolon, u"m"_s},
        {"ru", kKeyOf2, u"2"_s}, {"ru", kKeyOfU, u"г"_s}, {"ru", kKeyOfSemicolon, u"ж"_s},
    };
    const QStringList combinations[] = {{u"Shift_L"_s},
                                        {u"Control_L"_s},
                                        {u"Alt_L"_s},
                                        {u"Super_L"_s},
                                        {u"Super_L"_s, u"Shift_R"_s},
                                        {u"Control_R"_s, u"Alt_L"_s, u"Shift_L"_s}};
    for (const Key &key : keys) {
        for (const QStringList &modifiers : combinations) {
            QTest::addRow("%s, %s on %s", qPrintable(modifiers.join(u'+')), key.key, key.layout)
                << QString::fromLatin1(key.layout) << QString::fromLatin1(key.key) << modifiers
                << key.recorded;
        }
    }
    QTest::newRow("level 3") << u"de"_s << QString::fromLatin1(kKeyOfU)
                             << QStringList{u"ISO_Level3_Shift"_s, u"Super_L"_s} << u"u"_s;
    QTest::newRow("Space") << u"us"_s << u"space"_s << QStringList{u"Control_L"_s} << u" "_s;
    QTest::newRow("Tab") << u"us"_s << u"Tab"_s << QStringList{u"Shift_L"_s} << u"\t"_s;
    QTest::newRow("Return") << u"us"_s << u"Return"_s << QStringList{u"Alt_L"_s} << u"\r"_s;
    QTest::newRow("Escape") << u"us"_s << u"Escape"_s << QStringList{u"Super_L"_s} << u"\x1b"_s;
}

void X11KeyboardLayoutTest::keyIsRecordedAsItTypesWithoutModifiers()
{
    QFETCH(const QString, layout);
    QFETCH(const QString, key);
    QFETCH(const QStringList, modifiers);
    QFETCH(const QString, recorded);
    run(u"setxkbmap"_s, {layout});
    press(modifiers, key);
    waitForRecording(1);
    QCOMPARE(recordedKey(), recorded);
    QCOMPARE(qsizetype(m_recorder->recorded()->modifiers.size()),
             modifiers.size() - modifiers.count(u"ISO_Level3_Shift"_s));
}

void X11KeyboardLayoutTest::layoutThatChangesIsFollowed()
{
    press({u"Alt_L"_s}, QString::fromLatin1(kKeyOfY));
    waitForRecording(1);
    QCOMPARE(recordedKey(), u"y"_s);
    run(u"setxkbmap"_s, {u"de"_s});
    press({u"Alt_L"_s}, QString::fromLatin1(kKeyOfY));
    waitForRecording(2);
    QCOMPARE(recordedKey(), u"z"_s);
}

void X11KeyboardLayoutTest::keyThatTypesNothingIsNotRecorded_data()
{
    QTest::addColumn<QString>("key");
    for (const char *key : {"Up", "F5", "Home", "Shift_R", "Caps_Lock"})
        QTest::newRow(key) << QString::fromLatin1(key);
}

void X11KeyboardLayoutTest::keyThatTypesNothingIsNotRecorded()
{
    QFETCH(const QString, key);
    press({u"Super_L"_s}, key);
    if (key == u"Caps_Lock")
        press({}, key);
    press({u"Super_L"_s}, QString::fromLatin1(kKeyOfU));
    waitForRecording(1); // Of the second key alone.
    QCOMPARE(recordedKey(), u"u"_s);
}

void X11KeyboardLayoutTest::keypadTypesDigitsWithNumLock()
{
    press({}, u"Num_Lock"_s);
    press({u"Super_L"_s}, QString::fromLatin1(kKeypad1));
    press({}, u"Num_Lock"_s);
    waitForRecording(1);
    QCOMPARE(recordedKey(), u"1"_s);
}

void X11KeyboardLayoutTest::keysReachNoFieldWhileRecording()
{
    press({}, QString::fromLatin1(kKeyOfU));
    press({u"Shift_L"_s}, QString::fromLatin1(kKeyOfU));
    waitForRecording(1);
    QCOMPARE(m_field->text(), QString());
    m_recorder->setRecording(false);
    press({}, QString::fromLatin1(kKeyOfY));
    QTRY_COMPARE(m_field->text(), u"y"_s);
}

void X11KeyboardLayoutTest::eventThatIsNoKeyOfTheServersIsNotLookedUp()
{
    const QKeyEvent event(QEvent::KeyPress, Qt::Key_U, Qt::AltModifier, u"u"_s);
    QCOMPARE(m_layout.plainCharacter(event), std::nullopt);
}

int main(int argc, char *argv[])
{
    TestSurroundings surroundings;
    surroundings.noteStart();
    int result = 0;
    {
        const ApplicationDisplay display;
        const QApplication application(argc, argv);
        X11KeyboardLayoutTest test;
        result = QTest::qExec(&test, argc, argv);
    }
    return result + surroundings.leftovers();
}

#include "X11KeyboardLayoutTest.moc"
