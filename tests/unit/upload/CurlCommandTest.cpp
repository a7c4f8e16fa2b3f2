#include "support/TestMain.h"
#include "upload/CurlCommand.h"

using namespace Qt::StringLiterals;
using ServerType = UploadSettings::ServerType;
using TLSVersion = UploadSettings::TLSVersion;
using CurlCommand::TlsFrom;

class CurlCommandTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void cleanHost_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("host");
        const auto row = [](const char *name, const QString &typed, const QString &host) {
            QTest::newRow(name) << typed << host;
        };
        row("plain", u"myserver"_s, u"myserver"_s);
        row("case is kept", u"MyServer.Example"_s, u"MyServer.Example"_s);
        row("blanks and tabs", u" \t myserver\t "_s, u"myserver"_s);
        row("no-break space", u"\u00a0myserver\u3000"_s, u"myserver"_s);
        row("line breaks stay", u"\nmyserver\n"_s, u"\nmyserver\n"_s);
        row("blank inside", u"my server"_s, u"my server"_s);
        row("ftp", u"ftp://myserver/"_s, u"myserver"_s);
        row("ftp with blanks around", u"  ftp://myserver/  "_s, u"myserver"_s);
        row("ftps", u"ftps://myserver"_s, u"myserver"_s);
        row("http", u"http://myserver/a?b#c"_s, u"myserver"_s);
        row("https", u"https://MyServer/"_s, u"MyServer"_s);
        row("user and port", u"ftp://me:pw@myserver:2121/pub"_s, u"myserver"_s);
        row("scheme as user", u"ftp://ftp.x@ftp.y/"_s, u"ftp.y"_s);
        row("version 6 address", u"ftp://[::1]:21/"_s, u"::1"_s);
        row("other scheme", u"sftp://myserver/"_s, u"sftp://myserver/"_s);
        row("upper-case scheme", u"FTP://myserver/"_s, u"FTP://myserver/"_s);
        row("path without scheme", u"myserver/pub"_s, u"myserver/pub"_s);
        row("no host", u"ftp://"_s, u"ftp://"_s);
        row("no host but a path", u"ftp:///pub"_s, u"ftp:///pub"_s);
        row("not parsable", u"ftp://my server/"_s, u"ftp://my server/"_s);
        row("empty", u""_s, u""_s);
        row("blanks only", u" \t "_s, u""_s);
    }
    void cleanHost()
    {
        QFETCH(QString, typed);
        QTEST(CurlCommand::cleanHost(typed), "host");
    }

    void remoteDirectory_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("directory");
        QTest::newRow("empty") << u""_s << u"/"_s;
        QTest::newRow("blanks only") << u" \t"_s << u"/"_s;
        QTest::newRow("root") << u"/"_s << u"/"_s;
        QTest::newRow("no slash at the end") << u"/pub"_s << u"/pub/"_s;
        QTest::newRow("slash at the end") << u"/pub/"_s << u"/pub/"_s;
        QTest::newRow("no slash in front") << u"pub"_s << u"pub/"_s;
        QTest::newRow("blanks around") << u" /a b "_s << u"/a b/"_s;
        QTest::newRow("line break") << u"/pub\n"_s << u"/pub\n/"_s;
    }
    void remoteDirectory()
    {
        QFETCH(QString, path);
        QTEST(CurlCommand::remoteDirectory(path), "directory");
    }

    void percentEncodingKeepsExactlyTheCharactersOfAPath()
    {
        const QString kept = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                             "-._~!$&'()*+,;=:@/"_s;
        for (char16_t c = 0; c < 128; ++c) {
            const QString expected = kept.contains(QChar(c))
                ? QString(QChar(c))
                : u"%%1"_s.arg(uint(c), 2, 16, QChar(u'0')).toUpper();
            QCOMPARE(CurlCommand::percentEncoded(QString(QChar(c))), expected);
        }
        QCOMPARE(CurlCommand::percentEncoded(u"é📸"_s), u"%C3%A9%F0%9F%93%B8"_s);
        QCOMPARE(CurlCommand::percentEncoded(u"%41"_s), u"%2541"_s);
    }

    void textThatCannotBeEncodedStays()
    {
        const QString half = u"a b"_s + QChar(0xd83d);
        QCOMPARE(CurlCommand::percentEncoded(half), half);
    }

    void url_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("url");
        QTest::newRow("blank in the name is sent as %20")
            << ServerType::ftp << u"/pub"_s << u"a b.png"_s << u"ftp://myserver:21/pub/a%20b.png"_s;
        QTest::newRow("empty path is the root")
            << ServerType::ftp << u""_s << u"a.png"_s << u"ftp://myserver:21/a.png"_s;
        QTest::newRow("path without slash runs into the port")
            << ServerType::ftp << u"pub"_s << u"a.png"_s << u"ftp://myserver:21pub/a.png"_s;
        QTest::newRow("encrypted") << ServerType::ftps << u"/a b/ü/"_s << u"#?&.png"_s
                                   << u"ftps://myserver:21/a%20b/%C3%BC/%23%3F&.png"_s;
        QTest::newRow("slash in the name")
            << ServerType::ftp << u"/"_s << u"a/b"_s << u"ftp://myserver:21/a/b"_s;
        QTest::newRow("no kind of transfer in the name")
            << ServerType::ftp << u"/"_s << u"a;type=i;b"_s
            << u"ftp://myserver:21/a%3Btype=i%3Bb"_s;
        QTest::newRow("no kind of transfer in the path")
            << ServerType::ftp << u"/a;b;type=d/"_s << u"c"_s
            << u"ftp://myserver:21/a;b%3Btype=d/c"_s;
    }
    void url()
    {
        QFETCH(ServerType, type);
        QFETCH(QString, path);
        QFETCH(QString, name);
        UploadSettings settings;
        settings.serverType = type;
        settings.port = 21;
        settings.remotePath = path;
        QTEST(CurlCommand::url(settings, u"myserver"_s, name, TlsFrom::FirstByte), "url");
    }

    void tlsByCommandBeginsLikePlainFtp()
    {
        UploadSettings settings;
        settings.serverType = ServerType::ftps;
        settings.port = 21;
        QCOMPARE(CurlCommand::url(settings, u"[::1]"_s, u"a"_s, TlsFrom::Command),
                 u"ftp://[::1]:21/a"_s);
    }

    void portIsPlainDecimal()
    {
        UploadSettings settings;
        settings.serverType = ServerType::ftp;
        settings.port = 1234567;
        QCOMPARE(CurlCommand::url(settings, u"h"_s, u"a"_s, TlsFrom::FirstByte),
                 u"ftp://h:1234567/a"_s);
        settings.port = -1;
        QCOMPARE(CurlCommand::url(settings, u"h"_s, u"a"_s, TlsFrom::FirstByte), u"ftp://h:-1/a"_s);
    }

    void bracketsAndBracesAreEscapedForGlobbing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("escaped");
        QTest::newRow("plain") << u"/a b/c*,(1).png"_s << u"/a b/c*,(1).png"_s;
        QTest::newRow("brackets") << u"/[x]{y}.png"_s << u"/\\[x\\]\\{y\\}.png"_s;
        QTest::newRow("backslash stays") << u"/a\\b"_s << u"/a\\b"_s;
        QTest::newRow("backslash before a bracket") << u"/a\\[b"_s << u"/a\\\\[b"_s;
    }
    void bracketsAndBracesAreEscapedForGlobbing()
    {
        QFETCH(QString, path);
        QTEST(CurlCommand::escapedForGlobbing(path), "escaped");
    }

    void arguments_data()
    {
        QTest::addColumn<ServerType>("type");
        QTest::addColumn<TLSVersion>("tls");
        QTest::addColumn<bool>("insecure");
        QTest::addColumn<bool>("passive");
        QTest::addColumn<QStringList>("first");
        const QStringList none;
        const QStringList passive = {u"--ftp-pasv"_s};
        const QStringList encrypted = {u"--ssl-reqd"_s, u"--ftp-ssl-control"_s};
        const auto ftps = [](const char *name, TLSVersion tls, bool isInsecure, bool isPassive,
                             const QStringList &first) {
            QTest::newRow(name) << ServerType::ftps << tls << isInsecure << isPassive << first;
        };
        QTest::newRow("FTP") << ServerType::ftp << TLSVersion::automatic << false << false << none;
        QTest::newRow("FTP, passive")
            << ServerType::ftp << TLSVersion::automatic << false << true << passive;
        QTest::newRow("FTP has no certificates")
            << ServerType::ftp << TLSVersion::v1_2 << true << false << none;
        ftps("FTPS with everything", TLSVersion::v1_2, true, true,
             encrypted + QStringList{u"--tlsv1.2"_s, u"-k"_s} + passive);
        ftps("FTPS, automatic version", TLSVersion::automatic, false, false, encrypted);
        ftps("FTPS, automatic version, insecure", TLSVersion::automatic, true, true,
             encrypted + QStringList{u"-k"_s} + passive);
        ftps("FTPS 1.0", TLSVersion::v1_0, false, false, encrypted + QStringList{u"--tlsv1.0"_s});
        ftps("FTPS 1.1", TLSVersion::v1_1, false, false, encrypted + QStringList{u"--tlsv1.1"_s});
        ftps("FTPS 1.2", TLSVersion::v1_2, false, true,
             encrypted + QStringList{u"--tlsv1.2"_s} + passive);
        ftps("FTPS 1.3", TLSVersion::v1_3, false, false, encrypted + QStringList{u"--tlsv1.3"_s});
    }
    void arguments()
    {
        QFETCH(ServerType, type);
        QFETCH(TLSVersion, tls);
        QFETCH(bool, insecure);
        QFETCH(bool, passive);
        QFETCH(QStringList, first);
        UploadSettings settings;
        settings.serverType = type;
        settings.tlsVersion = tls;
        settings.allowInsecureCertificates = insecure;
        settings.usePassiveMode = passive;
        const QString url = type == ServerType::ftps ? u"ftps://h:21/b"_s : u"ftp://h:21/b"_s;
        const QStringList expected = first + QStringList{u"-T"_s,
                                                         u"/a \\[1\\].png"_s,
                                                         u"--netrc-file"_s,
                                                         u"/t/.netrc_X"_s,
                                                         u"--max-time"_s,
                                                         u"60"_s,
                                                         u"--connect-timeout"_s,
                                                         u"30"_s,
                                                         u"-v"_s,
                                                         url};
        QCOMPARE(CurlCommand::arguments(settings, u"/a [1].png"_s, u"/t/.netrc_X"_s, url, {}),
                 expected);
    }

    void whatBeginsInClearTextGoesThroughAProxyUnread()
    {
        UploadSettings settings;
        settings.serverType = ServerType::ftps;
        const QString url = u"ftp://h:21/b"_s;
        const QString option = u"--proxytunnel"_s;
        QCOMPARE(CurlCommand::arguments(settings, u"/a"_s, u"/n"_s, url, {}).count(option), 1);
        settings.serverType = ServerType::ftp;
        QCOMPARE(CurlCommand::arguments(settings, u"/a"_s, u"/n"_s, url, {}).count(option), 0);
    }

    void shownArgumentsHideTheCredentialsFile()
    {
        const QStringList arguments = {u"-T"_s,           u"/a b.png"_s,
                                       u"--netrc-file"_s, u"/t/.netrc_0A-B"_s,
                                       u"-v"_s,           u"ftp://h:21/x"_s};
        QCOMPARE(CurlCommand::shownArguments(arguments),
                 u"-T \"/a b.png\" [netrc-file] [netrc-file] -v ftp://h:21/x"_s);
    }

    void shownArgumentsHideWhateverNamesTheCredentialsFile()
    {
        QCOMPARE(CurlCommand::shownArguments({u"/t/a netrc b"_s}), u"[netrc-file]"_s);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, CurlCommandTest)
#include "CurlCommandTest.moc"
