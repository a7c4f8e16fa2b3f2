#include "platform/linux/UserDirectories.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

class UserDirectoriesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void folderIsWhatTheFileSays_data();
    void folderIsWhatTheFileSays();
};

void UserDirectoriesTest::folderIsWhatTheFileSays_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("folder");
    const auto row = [](const char *name, const QByteArray &content, const QString &folder) {
        QTest::newRow(name) << content << folder;
    };
    row("empty file", "", {});
    row("other keys", "XDG_PICTURES_DIR=\"$HOME/Pictures\"\nXDG_SCREENSHOTS_DIRS=\"/a\"\n", {});
    row("below home", "XDG_SCREENSHOTS_DIR=\"$HOME/Pictures/Shots\"\n",
        u"/home/a/Pictures/Shots"_s);
    row("absolute", "XDG_SCREENSHOTS_DIR=\"/srv/shots\"\n", u"/srv/shots"_s);
    row("without a line break", "XDG_SCREENSHOTS_DIR=\"/srv/shots\"", u"/srv/shots"_s);
    row("slashes", "XDG_SCREENSHOTS_DIR=\"$HOME//Shots/\"\n", u"/home/a/Shots"_s);
    row("blanks", " XDG_SCREENSHOTS_DIR \t= \"$HOME/My Shots\" \n", u"/home/a/My Shots"_s);
    row("among others",
        "# Folders\n\nXDG_A_DIR=\"/a\"\nXDG_SCREENSHOTS_DIR=\"/b\"\nXDG_C_DIR=\"/c\"\n", u"/b"_s);
    row("the last counts", "XDG_SCREENSHOTS_DIR=\"/a\"\nXDG_SCREENSHOTS_DIR=\"/b\"\n", u"/b"_s);
    row("a useless one does not", "XDG_SCREENSHOTS_DIR=\"/a\"\nXDG_SCREENSHOTS_DIR=\"b\"\n",
        u"/a"_s);
    row("not ASCII", "XDG_SCREENSHOTS_DIR=\"$HOME/Kéák\"\n", u"/home/a/Kéák"_s);
    row("escapes", R"(XDG_SCREENSHOTS_DIR="$HOME/a\"b\\c\$d")", u"/home/a/a\"b\\c$d"_s);
    row("what follows the quotation mark", "XDG_SCREENSHOTS_DIR=\"/a\" # \"b\"", u"/a"_s);
    row("comment", "#XDG_SCREENSHOTS_DIR=\"/a\"\n", {});
    row("no quotation marks", "XDG_SCREENSHOTS_DIR=/a\n", {});
    row("no second quotation mark", "XDG_SCREENSHOTS_DIR=\"/a\n", {});
    row("escape at the end", "XDG_SCREENSHOTS_DIR=\"/a\\", {});
    row("relative", "XDG_SCREENSHOTS_DIR=\"Shots\"\n", {});
    row("nothing", "XDG_SCREENSHOTS_DIR=\"\"\n", {});
    row("another variable", "XDG_SCREENSHOTS_DIR=\"$HOMES/a\"\n", {});
    row("escaped variable", "XDG_SCREENSHOTS_DIR=\"\\$HOME/a\"\n", {});
    row("home", "XDG_SCREENSHOTS_DIR=\"$HOME\"\n", {});
    row("home with a slash", "XDG_SCREENSHOTS_DIR=\"$HOME/\"\n", {});
    row("home by its path", "XDG_SCREENSHOTS_DIR=\"/home/a\"\n", {});
}

void UserDirectoriesTest::folderIsWhatTheFileSays()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, folder);
    QCOMPARE(UserDirectories::folder(content, "XDG_SCREENSHOTS_DIR", u"/home/a"_s), folder);
}

TESSERY_TEST_MAIN(QCoreApplication, UserDirectoriesTest)
#include "UserDirectoriesTest.moc"
