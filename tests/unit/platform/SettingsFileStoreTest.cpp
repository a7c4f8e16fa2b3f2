#include "platform/linux/SettingsFileStore.h"

#include "support/DiskCalls.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QObject>
#include <QSettings>
#include <QTemporaryDir>

#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString kSuite = u"org.tessery.Tessery.settings"_s;
const QString kKey = u"uploadSettings"_s;
const QByteArray kJson = R"({"hostname":"höst,; %","port":22,"modifiers":["⌘","⇧"]})";

/// Makes every write of file contents fail, as on a full disk.
class FullDisk {
public:
    FullDisk()
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{0, m_before.rlim_max};
        std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before = {};
};

/// Lets file modes bind the superuser too, as whom the tests may run.
class OrdinaryUser {
public:
    OrdinaryUser()
    {
        ::syscall(SYS_capget, &m_header, m_before);
        __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {m_before[0], m_before[1]};
        none[0].effective = none[1].effective = 0;
        ::syscall(SYS_capset, &m_header, none);
    }
    ~OrdinaryUser() { ::syscall(SYS_capset, &m_header, m_before); }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    __user_cap_header_struct m_header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct m_before[_LINUX_CAPABILITY_U32S_3] = {};
};

int modeOf(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0
        ? static_cast<int>(status.st_mode & 07777)
        : -1;
}

} // namespace

class SettingsFileStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_config = std::make_unique<QTemporaryDir>();
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config->path()));
    }

    void cleanup()
    {
        ::umask(022);
        qunsetenv("XDG_CONFIG_HOME");
        m_config.reset();
    }

    void readingAnEmptyStoreMakesNoFile()
    {
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::nullopt);
        QCOMPARE(m_store.standardDomain()->data(kKey), std::nullopt);
        QVERIFY(QDir(m_config->path()).isEmpty());
    }

    void domainsHaveTheirFiles()
    {
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "suite"), QString());
        QCOMPARE(m_store.standardDomain()->setData(kKey, "standard"), QString());
        QCOMPARE(
            QDir(m_config->filePath(u"tessery"_s)).entryList(QDir::Files | QDir::Hidden),
            QStringList({u"org.tessery.Tessery.conf"_s, u"org.tessery.Tessery.settings.conf"_s}));
        QCOMPARE(contents(suitePath()), "[General]\nuploadSettings=@ByteArray(suite)\n");
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::optional<QByteArray>("suite"));
        QCOMPARE(m_store.standardDomain()->data(kKey), std::optional<QByteArray>("standard"));
    }

    void everyByteComesBack_data()
    {
        QTest::addColumn<QByteArray>("value");
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("JSON") << kJson;
        QTest::newRow("every byte") << all;
        QTest::newRow("large") << all.repeated(4000);
    }

    void everyByteComesBack()
    {
        QFETCH(const QByteArray, value);
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, value), QString());
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::optional(value));
    }

    void otherKeysAreKept()
    {
        put(suitePath(), "[General]\nother=1\n\n[Group]\nx=2\n");
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "x"), QString());
        const QSettings file(suitePath(), QSettings::IniFormat);
        QCOMPARE(file.value(u"other"_s).toInt(), 1);
        QCOMPARE(file.value(u"Group/x"_s).toInt(), 2);
    }

    void valueOfAnotherTypeIsThereAndNotMistakenForNothing_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("text") << QByteArray("[General]\nuploadSettings=\"{}\"\n")
                              << QByteArray("{}");
        QTest::newRow("list") << QByteArray("[General]\nuploadSettings={, }\n") << QByteArray();
        QTest::newRow("nothing") << QByteArray("[General]\nuploadSettings=\n") << QByteArray();
    }

    void valueOfAnotherTypeIsThereAndNotMistakenForNothing()
    {
        QFETCH(const QByteArray, file);
        put(suitePath(), file);
        const std::optional<QByteArray> value = m_store.namedDomain(kSuite)->data(kKey);
        QVERIFY(value);
        QTEST(*value, "value");
    }

    void whatCannotBeOpenedIsNull_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char *kind : {"folder", "pipe", "unreadable", "broken"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void whatCannotBeOpenedIsNull()
    {
        QFETCH(const QString, kind);
        const OrdinaryUser user;
        QVERIFY(QDir().mkpath(m_config->filePath(u"tessery"_s)));
        const QByteArray path = QFile::encodeName(suitePath());
        if (kind == u"folder")
            QVERIFY(QDir().mkpath(suitePath() + u"/x"_s));
        else if (kind == u"pipe")
            QCOMPARE(::mkfifo(path.constData(), 0600), 0);
        else
            put(suitePath(), kind == u"broken" ? QByteArray("[broken\n") : "[General]\nx=1\n");
        if (kind == u"unreadable")
            QCOMPARE(::chmod(path.constData(), 0), 0);
        QVERIFY(!m_store.namedDomain(kSuite));
        QCOMPARE(m_store.standardDomain()->setData(kKey, "standard"), QString());
    }

    void fullDiskIsReportedAndTheOldValueStays()
    {
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "old"), QString());
        {
            const FullDisk disk;
            const auto domain = m_store.namedDomain(kSuite);
            QCOMPARE(domain->setData(kKey, "new"), u"Could not write "_s + suitePath());
            QCOMPARE(domain->data(kKey), std::optional<QByteArray>("old"));
            QCOMPARE(contents(suitePath()), "[General]\nuploadSettings=@ByteArray(old)\n");
        }
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::optional<QByteArray>("old"));
        QCOMPARE(
            QDir(m_config->filePath(u"tessery"_s)).entryList(QDir::Files | QDir::Hidden).size(), 1);
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "new"), QString());
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::optional<QByteArray>("new"));
    }

    void readOnlyFolderIsReported()
    {
        const OrdinaryUser user;
        QVERIFY(QDir().mkpath(m_config->filePath(u"tessery"_s)));
        const QByteArray folder = QFile::encodeName(m_config->filePath(u"tessery"_s));
        QCOMPARE(::chmod(folder.constData(), 0500), 0);
        const auto domain = m_store.namedDomain(kSuite);
        QCOMPARE(domain->setData(kKey, "new"), u"Could not write "_s + suitePath());
        QCOMPARE(domain->data(kKey), std::nullopt);
        QCOMPARE(m_store.namedDomain(kSuite)->data(kKey), std::nullopt);
        QCOMPARE(::chmod(folder.constData(), 0700), 0);
    }

    void fileThatCannotBeReadInFullIsNotOverwrittenByAnError()
    {
        const OrdinaryUser user;
        QCOMPARE(m_store.standardDomain()->setData(kKey, "old"), QString());
        const QByteArray path = QFile::encodeName(standardPath());
        QCOMPARE(::chmod(path.constData(), 0), 0);
        QCOMPARE(m_store.standardDomain()->setData(kKey, "new"),
                 u"Could not write "_s + standardPath());
        QCOMPARE(::chmod(path.constData(), 0600), 0);
        QCOMPARE(contents(standardPath()), "[General]\nuploadSettings=@ByteArray(old)\n");
    }

    void modeOfTheFileIsNotWidened_data()
    {
        QTest::addColumn<int>("umask");
        QTest::addColumn<int>("fresh");
        QTest::newRow("private") << 077 << 0600;
        QTest::newRow("usual") << 022 << 0644;
    }

    void modeOfTheFileIsNotWidened()
    {
        QFETCH(const int, umask);
        ::umask(static_cast<mode_t>(umask));
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "one"), QString());
        QTEST(modeOf(suitePath()), "fresh");
        QCOMPARE(::chmod(QFile::encodeName(suitePath()).constData(), 0600), 0);
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "two"), QString());
        QCOMPARE(modeOf(suitePath()), 0600);
    }

    void valueIsOnTheDiskBeforeItTakesTheOldOnesPlace()
    {
        for (const QByteArray value : {"first", "second"}) {
            const DiskCalls calls;
            QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, value), QString());
            QCOMPARE(calls.all().constLast(), "org.tessery.Tessery.settings.conf: synced");
        }
    }

    void linkedFileStaysALink()
    {
        const QString elsewhere = m_config->filePath(u"dotfiles.conf"_s);
        put(elsewhere, "[General]\n");
        QVERIFY(QDir().mkpath(m_config->filePath(u"tessery"_s)));
        QVERIFY(QFile::link(elsewhere, suitePath()));
        QCOMPARE(m_store.namedDomain(kSuite)->setData(kKey, "x"), QString());
        QCOMPARE(QFile::symLinkTarget(suitePath()), elsewhere);
        QCOMPARE(contents(elsewhere), "[General]\nuploadSettings=@ByteArray(x)\n");
    }

private:
    QString suitePath() const
    {
        return m_config->filePath(u"tessery/org.tessery.Tessery.settings.conf"_s);
    }
    QString standardPath() const
    {
        return m_config->filePath(u"tessery/org.tessery.Tessery.conf"_s);
    }

    static QByteArray contents(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
    }

    void put(const QString &path, const QByteArray &text) const
    {
        QFile file(path);
        QVERIFY(QDir().mkpath(m_config->filePath(u"tessery"_s)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    SettingsFileStore m_store;
    std::unique_ptr<QTemporaryDir> m_config;
};

TESSERY_TEST_MAIN(QCoreApplication, SettingsFileStoreTest)

#include "SettingsFileStoreTest.moc"
