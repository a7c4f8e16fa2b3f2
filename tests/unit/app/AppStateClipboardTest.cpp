#include "AppStateCase.h"
#include "support/CapturedOutput.h"

#include <QBuffer>
#include <QImage>

namespace {

const QString kTriggered = u"📋 Upload clipboard triggered"_s;
const QString kLink = u"https://x.org/shots/"_s;

/// Keeps a copy of the file that curl was to send, under the name "sent".
const QByteArray kKeepSent =
    "last=; for argument; do\n"
    "  [ \"$last\" = -T ] && { cp \"$argument\" \"$(dirname \"$0\")/sent\" || exit 26; }\n"
    "  last=$argument\n"
    "done\n";

QByteArray encoded(const char *format)
{
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(QColor(10, 20, 30));
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return data;
}

} // namespace

class AppStateClipboardTest : public AppStateCase {
    Q_OBJECT

private Q_SLOTS:
    void invalidSettingsAreReportedAndTheClipboardIsNotRead()
    {
        makeState();
        clipboard().text = u"private"_s;
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(output.lines(), QStringList({kTriggered, u"❌ Settings not valid"_s}));
        QCOMPARE(notified(),
                 QStringList(u"Upload Error|Please configure server settings first|!"_s));
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
        QCOMPARE(clipboard().timesRead, 0);
    }

    void emptyClipboardIsReported()
    {
        makeState(validSettings());
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(output.lines(), QStringList(kTriggered));
        QCOMPARE(notified(),
                 QStringList(u"❌ Clipboard Empty|No file, text, or image found in clipboard|!"_s));
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
        QCOMPARE(clipboard().asked, QStringList({u"addresses"_s, u"text"_s, u"image"_s}));
    }

    void textIsUploadedAsAFileOfItsUtf8()
    {
        curlDoes(kKeepSent);
        makeState(validSettings());
        const QString text = u"\ufeffline\r\nnext\n\u0001 😀 é\t"_s;
        clipboard().text = text;
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: clipboard text"_s);
        QCOMPARE(sent(), text.toUtf8());
        const QString link = kLink + u"clipboard_"_s + seconds() + u".txt"_s;
        QCOMPARE(clipboard().text, link);
        QCOMPARE(output.lines().mid(0, 2),
                 QStringList({kTriggered, u"📋 Found text in clipboard, creating text file"_s}));
        QCOMPARE(
            notified(),
            QStringList({u"Uploading Text|Text content from clipboard|"_s,
                         u"✅ Screenshot Uploaded|URL copied to clipboard: "_s + link + u'|'}));
        QCOMPARE(clipboard().asked, QStringList({u"addresses"_s, u"text"_s}));
        QCOMPARE(temporaryFiles(), QStringList());
    }

    void textFileCanBeReadByItsOwnerAlone()
    {
        curlDoes("stat -c %a \"$(dirname \"$0\")\"/tmp/clipboard_* > \"$(dirname \"$0\")/sent\"");
        makeState(validSettings());
        clipboard().text = u"x"_s;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: clipboard text"_s);
        QCOMPARE(sent(), "600\n");
    }

    void statusTellsThatTextIsUnderWay()
    {
        curlDoes("exec /usr/bin/sleep 60");
        makeState(validSettings());
        clipboard().text = u"x"_s;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading text from clipboard..."_s);
    }

    void remoteNameOfTextFollowsTheNamingRules()
    {
        UploadSettings settings = validSettings();
        settings.filenameStyle = UploadSettings::FilenameStyle::timestamp;
        settings.addDateToFilename = true;
        makeState(settings);
        clipboard().text = u"x"_s;
        m_state->uploadClipboard();
        QTRY_COMPARE(clipboard().text, kLink + seconds() + u"_2025-12-01.txt"_s);
    }

    void failedTransferLeavesTheTextAndNoFile()
    {
        curlDoes("echo '< 530 Login incorrect.' >&2; exit 67");
        makeState(validSettings());
        clipboard().text = u"mine"_s;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"❌ Upload failed: Authentication failed"_s);
        QCOMPARE(clipboard().text, u"mine"_s);
        QCOMPARE(temporaryFiles(), QStringList());
    }

    void textThatCannotBeWrittenIsReported()
    {
        makeState(validSettings());
        QVERIFY(QDir(m_folder->filePath(u"tmp"_s)).removeRecursively());
        clipboard().text = u"x"_s;
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(output.lines().last(), u"📋 Found text in clipboard, creating text file"_s);
        QCOMPARE(notified(),
                 QStringList(u"❌ Upload Failed|Could not create temp file: Could not create "_s
                             + m_folder->filePath(u"tmp/clipboard_"_s) + seconds()
                             + u".txt: No such file or directory|!"_s));
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
    }

    void fileIsUploadedAndStays()
    {
        curlDoes(kKeepSent);
        makeState(validSettings());
        const QString name = u"my #1 füle%20.txt"_s;
        const QUrl file = userFile(name, "the user's own");
        clipboard().addresses = {file, QUrl(u"file:///nowhere"_s)};
        clipboard().text = u"its name"_s;
        clipboard().image = encoded("png");
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: "_s + name);
        QCOMPARE(sent(), "the user's own");
        QVERIFY(QFile::exists(file.toLocalFile()));
        QCOMPARE(clipboard().text, kLink + name);
        QCOMPARE(output.lines().mid(0, 2),
                 QStringList({kTriggered, u"📋 Found file URL in clipboard: "_s + name}));
        QCOMPARE(notified(),
                 QStringList({u"Uploading from Clipboard|"_s + name + u'|',
                              u"✅ Screenshot Uploaded|URL copied to clipboard: "_s + kLink + name
                                  + u'|'}));
        QCOMPARE(clipboard().asked, QStringList(u"addresses"_s));
    }

    void statusNamesTheFileThatIsUnderWay()
    {
        curlDoes("exec /usr/bin/sleep 60");
        makeState(validSettings());
        clipboard().addresses = {userFile(u"a b.txt"_s, "x")};
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading a b.txt from clipboard..."_s);
    }

    void fileStaysWhenItsTransferFails()
    {
        curlDoes("exit 7");
        makeState(validSettings());
        const QUrl file = userFile(u"a.txt"_s, "x");
        clipboard().addresses = {file};
        m_state->uploadClipboard();
        QTRY_VERIFY(m_state->lastUploadStatus().startsWith(u"❌ Upload failed: "_s));
        QVERIFY(QFile::exists(file.toLocalFile()));
        QCOMPARE(clipboard().addresses, QList<QUrl>{file});
    }

    void webAddressFailsInTheTransferEvenWhereAFileHasItsPath()
    {
        curlDoes(kKeepSent);
        makeState(validSettings());
        const QUrl file = userFile(u"passwords.txt"_s, "private");
        QUrl address(u"https://x.org"_s);
        address.setPath(file.path());
        clipboard().addresses = {address};
        clipboard().text = address.toString();
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_VERIFY(m_state->lastUploadStatus().startsWith(u"❌ Upload failed: "_s));
        QVERIFY(!QFile::exists(m_folder->filePath(u"sent"_s)));
        QVERIFY(output.lines().contains(u"📋 Found file URL in clipboard: passwords.txt"_s));
        QCOMPARE(notified().value(0), u"Uploading from Clipboard|passwords.txt|"_s);
        QCOMPARE(notified().value(1).left(15), u"❌ Upload Failed"_s);
        QCOMPARE(clipboard().addresses, QList<QUrl>{address});
    }

    void pngIsUploadedByteForByte()
    {
        curlDoes(kKeepSent);
        makeState(validSettings());
        const QByteArray png = encoded("png");
        clipboard().image = png;
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: clipboard image"_s);
        QCOMPARE(sent(), png);
        const QString link = kLink + u"clipboard_"_s + seconds() + u".png"_s;
        QCOMPARE(clipboard().text, link);
        QCOMPARE(output.lines().mid(0, 2),
                 QStringList({kTriggered, u"📋 Found image in clipboard, creating PNG file"_s}));
        QCOMPARE(
            notified(),
            QStringList({u"Uploading Image|Image from clipboard|"_s,
                         u"✅ Screenshot Uploaded|URL copied to clipboard: "_s + link + u'|'}));
        QCOMPARE(temporaryFiles(), QStringList());
    }

    void imageOfAnotherFormatIsUploadedAsPng()
    {
        curlDoes(kKeepSent);
        makeState(validSettings());
        clipboard().image = encoded("bmp");
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"✅ Uploaded: clipboard image"_s);
        const QImage image = QImage::fromData(sent(), "png");
        QCOMPARE(image.size(), QSize(3, 2));
        QCOMPARE(image.pixelColor(1, 1), QColor(10, 20, 30));
    }

    void statusTellsThatAnImageIsUnderWay()
    {
        curlDoes("exec /usr/bin/sleep 60");
        makeState(validSettings());
        clipboard().image = encoded("png");
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->lastUploadStatus(), u"📤 Uploading image from clipboard..."_s);
    }

    void brokenImageIsReported()
    {
        makeState(validSettings());
        clipboard().image = encoded("png").chopped(20);
        CapturedOutput output;
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(output.lines().last(), u"📋 Found image in clipboard, creating PNG file"_s);
        QCOMPARE(notified(),
                 QStringList(u"❌ Upload Failed|Could not convert clipboard image to PNG|!"_s));
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
    }

    void imageThatCannotBeWrittenIsReported()
    {
        makeState(validSettings());
        QVERIFY(QDir(m_folder->filePath(u"tmp"_s)).removeRecursively());
        clipboard().image = encoded("png");
        m_state->uploadClipboard();
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(notified().size(), 1);
        QVERIFY(notified()[0].startsWith(
            u"❌ Upload Failed|Could not save clipboard image: Could not create "_s));
        QCOMPARE(m_state->lastUploadStatus(), u"Ready"_s);
    }

    void twoUploadsOfOneSecondShareTheFileAndBothEnd()
    {
        // Each waits for a file of its own number before it reads what it was told to send.
        curlDoes(
            "folder=$(dirname \"$0\"); number=1\n"
            "until mkdir \"$folder/running$number\" 2>/dev/null; do number=$((number + 1)); done\n"
            "until test -e \"$folder/go$number\"; do /usr/bin/sleep 0.02; done\n"
            + kKeepSent + "mv \"$folder/sent\" \"$folder/sent$number\"");
        makeState(validSettings());
        clipboard().text = u"first"_s;
        m_state->uploadClipboard();
        QTRY_VERIFY(QFile::exists(m_folder->filePath(u"running1"_s)));
        clipboard().text = u"the second"_s;
        m_state->uploadClipboard();
        QTRY_VERIFY(QFile::exists(m_folder->filePath(u"running2"_s)));
        QCOMPARE(temporaryFiles().size(), 1);

        QVERIFY(QFile(m_folder->filePath(u"go1"_s)).open(QIODevice::WriteOnly));
        QTRY_COMPARE(m_state->tasks().running(), 1);
        QCOMPARE(temporaryFiles().size(), 1);
        QVERIFY(QFile(m_folder->filePath(u"go2"_s)).open(QIODevice::WriteOnly));
        QTRY_COMPARE(m_state->tasks().running(), 0);
        QCOMPARE(contentsOf(u"sent2"_s), "the second");
        QCOMPARE(notified().filter(u"✅ Screenshot Uploaded"_s).size(), 2);
        QCOMPARE(temporaryFiles(), QStringList());
    }

private:
    FakePasteboard &clipboard() { return *m_platform->fakePasteboard; }

    QString seconds() const { return QString::number(m_clock.now().toSecsSinceEpoch()); }

    QUrl userFile(const QString &name, const QByteArray &contents)
    {
        QFile file(m_folder->filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("could not write");
        return QUrl::fromLocalFile(file.fileName());
    }

    QByteArray contentsOf(const QString &name) const
    {
        QFile file(m_folder->filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    QByteArray sent() const { return contentsOf(u"sent"_s); }

    QStringList temporaryFiles() const
    {
        return QDir(m_folder->filePath(u"tmp"_s))
            .entryList({u"clipboard_*"_s}, QDir::Files | QDir::Hidden);
    }

    /// Each notification as title, body and, for an error, an exclamation mark.
    QStringList notified() const
    {
        QStringList result;
        for (const UserNotification &sent : m_platform->fakeNotifications->delivered) {
            const bool isError = sent.sound == UserNotification::Sound::Critical;
            result << sent.title + u'|' + sent.body + u'|' + (isError ? u"!"_s : QString());
        }
        return result;
    }
};

TESSERY_TEST_MAIN(QCoreApplication, AppStateClipboardTest)
#include "AppStateClipboardTest.moc"
