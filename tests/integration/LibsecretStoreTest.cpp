#include "platform/linux/LibsecretStore.h"

#include "platform/linux/FileSecretStore.h"
#include "support/CapturedOutput.h"
#include "support/PrivateKeyring.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

const QString kService = u"org.tessery.Tessery"_s;
const QString kAccount = u"serverPassword"_s;
const QStringList kAttributes{u"service"_s, kService, u"account"_s, kAccount};

} // namespace

/// The store against a real keyring on a bus of its own, with the real prompter on a display of its
/// own.
class LibsecretStoreTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_keyring = std::make_unique<PrivateKeyring>(); }

    void init()
    {
        TestSurroundings::failOnWarnings();
        m_data = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(m_data->path()));
        m_changes = 0;
        m_readable = false;
        m_store = makeStore();
    }

    void cleanup()
    {
        m_store.reset();
        m_keyring->stop();
    }

    void cleanupTestCase()
    {
        m_keyring.reset();
        m_data.reset();
    }

    // Runs first, for there is no way back from having a session bus.
    void withoutSessionBusAFileTakesOverAndOneLineSaysSo() { checkFallback(); }

    void withoutSecretServiceAFileTakesOverAndOneLineSaysSo()
    {
        m_keyring->startBus();
        checkFallback();
    }

    void serviceThatCannotBeStartedIsNone()
    {
        m_keyring->startBus();
        m_keyring->setActivation(PrivateKeyring::kSecretsName, "/bin/false");
        checkFallback();
        m_keyring->setActivation(PrivateKeyring::kSecretsName, {});
    }

    void secretComesBack_data()
    {
        QTest::addColumn<QByteArray>("secret");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("text") << QByteArray("pass\"word'");
        QTest::newRow("UTF-8") << QByteArray("s\xc3\xa9"
                                             "cret \xf0\x9f\x94\x91\n");
        QTest::newRow("long") << QByteArray(20000, 'x');
    }

    void secretComesBack()
    {
        QFETCH(const QByteArray, secret);
        m_keyring->start();
        const CapturedOutput output;
        QCOMPARE(m_store->read(kService, kAccount), std::nullopt);
        QVERIFY(m_store->write(kService, kAccount, secret));
        QCOMPARE(m_store->read(kService, kAccount), std::optional(secret));
        QCOMPARE(makeStore()->read(kService, kAccount), std::optional(secret));
        QVERIFY(!QFile::exists(fallbackPath()));
        QCOMPARE(output.bytes(), QByteArray());
    }

    void writingAgainReplacesTheItem()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "one"));
        QVERIFY(m_store->write(kService, kAccount, "two"));
        QVERIFY(m_store->write(u"other"_s, kAccount, "three"));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("two"));
        const auto found =
            outputOf(u"secret-tool"_s, QStringList{u"search"_s, u"--all"_s} + kAttributes);
        QVERIFY(found);
        QCOMPARE(found->count("secret = "), 1);
        QVERIFY(found->contains("label = Tessery server password\n"));
    }

    void secretToolReadsWhatTheStoreWrote()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount,
                               "s\xc3\xa9"
                               "cret"));
        QCOMPARE(outputOf(u"secret-tool"_s, QStringList{u"lookup"_s} + kAttributes),
                 std::optional<QByteArray>("s\xc3\xa9"
                                           "cret"));
    }

    void storeReadsWhatSecretToolWroteAndReplacesIt()
    {
        m_keyring->start();
        QVERIFY(outputOf(u"secret-tool"_s, QStringList{u"store"_s, u"--label=Mine"_s} + kAttributes,
                         "from outside"));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("from outside"));
        QVERIFY(!m_store->isLocked());
        QVERIFY(m_store->write(kService, kAccount, "ours"));
        QCOMPARE(outputOf(u"secret-tool"_s, QStringList{u"lookup"_s} + kAttributes),
                 std::optional<QByteArray>("ours"));
    }

    void lockedItemIsAbsentAndReadingDoesNotPrompt()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        m_keyring->lock();
        QElapsedTimer time;
        time.start();
        QCOMPARE(m_store->read(kService, kAccount), std::nullopt);
        QVERIFY2(time.elapsed() < 1000, qPrintable(QString::number(time.elapsed())));
        QVERIFY(m_store->isLocked());
        QTest::qWait(500); // Nothing may happen.
        QVERIFY(!m_keyring->hasPrompted());
    }

    void keyringThatAnotherProgramUnlocksIsNoticed()
    {
        m_keyring->start();
        watch();
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        QTRY_VERIFY(m_changes > 0); // It was unlocked, so nobody is asked.
        m_keyring->lock();
        QTRY_COMPARE(m_readable, false);
        unlockForAnotherProgram();
        QTRY_COMPARE(m_readable, true);
    }

    void secretThatSomethingElseStoresIsNoticed()
    {
        m_keyring->start();
        watch();
        QVERIFY(outputOf(u"secret-tool"_s, QStringList{u"store"_s, u"--label=x"_s} + kAttributes,
                         "from outside"));
        QTRY_VERIFY(m_changes > 0);
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("from outside"));
    }

    void unlockAsksTheUserOnceWithoutWaiting()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        m_keyring->lock();
        watch();
        QVERIFY(!m_keyring->hasPrompted());
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        QCOMPARE(m_store->read(kService, kAccount), std::nullopt);
        m_keyring->answerPrompt({PrivateKeyring::kPassword});
        QTRY_COMPARE(m_readable, true);
        QTRY_COMPARE(m_keyring->prompts(), 0);
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("secret"));
    }

    void declinedUnlockLeavesTheItemAbsent()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        m_keyring->lock();
        watch();
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        m_keyring->declinePrompt();
        QTRY_COMPARE(m_keyring->prompts(), 0);
        QCOMPARE(m_store->read(kService, kAccount), std::nullopt);
    }

    void unlockedKeyringIsNotAskedFor()
    {
        m_keyring->start();
        watch();
        QTest::qWait(500); // Nothing may happen.
        QVERIFY(!m_keyring->hasPrompted());
    }

    void secretWrittenBeforeWatchingIsStoredOnceTheUserHasUnlockedTheKeyring()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "old"));
        m_keyring->lock();
        QVERIFY(!m_store->write(kService, kAccount, "new"));
        watch();
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        m_keyring->answerPrompt({PrivateKeyring::kPassword});
        QTRY_COMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("new"));
    }

    void writingToALockedKeyringStoresOnceTheUserHasUnlockedIt()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "old"));
        m_keyring->lock();
        watch();
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        QVERIFY(!m_store->write(kService, kAccount, "ne"));
        QVERIFY(!m_store->write(kService, kAccount, "new"));
        QCOMPARE(m_keyring->prompts(), 1);
        m_keyring->answerPrompt({PrivateKeyring::kPassword});
        QTRY_COMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("new"));
        QVERIFY(!QFile::exists(fallbackPath()));
    }

    void declinedWriteIsForgotten()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "old"));
        m_keyring->lock();
        QVERIFY(!m_store->write(kService, kAccount, "declined"));
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        m_keyring->declinePrompt();
        QTRY_COMPARE(m_keyring->prompts(), 0);
        unlockForAnotherProgram();
        QTRY_COMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("old"));
        QVERIFY(m_store->write(kService, kAccount, "new"));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("new"));
    }

    void writingWithoutDefaultCollectionLetsTheUserMakeOne()
    {
        m_keyring->start(false);
        watch();
        QVERIFY(!m_store->write(kService, kAccount, "secret"));
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        m_keyring->answerPrompt({u"new"_s, u"new"_s});
        QTRY_COMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("secret"));
        QTRY_VERIFY(m_changes > 0);
    }

    void hungServiceIsGivenTwoSeconds_data()
    {
        QTest::addColumn<bool>("known");
        QTest::newRow("before the first call") << false;
        QTest::newRow("after a good call") << true;
    }

    void hungServiceIsGivenTwoSeconds()
    {
        QFETCH(const bool, known);
        m_keyring->start();
        QVERIFY(makeStore()->write(kService, kAccount, "secret"));
        if (known)
            QVERIFY(m_store->read(kService, kAccount));
        bool loopRan = false;
        QTimer timer;
        timer.callOnTimeout([&loopRan] { loopRan = true; });
        timer.start(0);
        m_keyring->send(SIGSTOP);
        QElapsedTimer time;
        time.start();
        const auto secret = m_store->read(kService, kAccount);
        const qint64 readTime = time.restart();
        const bool written = m_store->write(kService, kAccount, "other");
        const qint64 writeTime = time.elapsed();
        m_keyring->send(SIGCONT);
        QCOMPARE(secret, std::nullopt);
        QCOMPARE(written, false);
        for (const qint64 taken : {readTime, writeTime})
            QVERIFY2(taken >= 1900 && taken <= 2500, qPrintable(QString::number(taken)));
        QVERIFY(!loopRan);
        QVERIFY(m_store->read(kService, kAccount));
        QVERIFY(!QFile::exists(fallbackPath()));
    }

    void restartedServiceIsFoundAgain()
    {
        m_keyring->start();
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        watch();
        m_keyring->stop();
        m_changes = 0;
        m_keyring->start();
        QTRY_VERIFY(m_changes > 0);
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("secret"));
    }

    void fallbackFileIsReadUntilTheServiceHasStoredSomething()
    {
        m_keyring->startBus();
        QVERIFY(m_store->write(kService, kAccount, "in the file"));
        QVERIFY(QFile::exists(fallbackPath()));
        m_keyring->start();
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("in the file"));
        QVERIFY(m_store->write(kService, kAccount, "in the keyring"));
        QVERIFY(!QFile::exists(fallbackPath()));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("in the keyring"));
    }

private:
    static std::unique_ptr<LibsecretStore> makeStore()
    {
        return std::make_unique<LibsecretStore>(std::make_unique<FileSecretStore>());
    }

    static QString fallbackPath() { return FileSecretStore().filePath(kService, kAccount); }

    void checkFallback()
    {
        const CapturedOutput output;
        QCOMPARE(m_store->read(kService, kAccount), std::nullopt);
        QVERIFY(m_store->write(kService, kAccount, ""));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>(""));
        QVERIFY(m_store->write(kService, kAccount, "secret"));
        QCOMPARE(m_store->read(kService, kAccount), std::optional<QByteArray>("secret"));
        QCOMPARE(output.lines(),
                 QStringList{u"⚠️ No secret service is available, keeping the server password in a "
                             "file: "_s
                             + fallbackPath()});
        QVERIFY(fallbackPath().startsWith(m_data->path()));
        QCOMPARE(QFileInfo(fallbackPath()).permissions() & ~QFile::Permissions(0x7700),
                 QFile::Permissions());
    }

    /// Lets another program ask, and the user consent.
    void unlockForAnotherProgram()
    {
        const TestChild other(u"secret-tool"_s, QStringList{u"lookup"_s} + kAttributes);
        QTRY_COMPARE_WITH_TIMEOUT(m_keyring->prompts(), 1, 10000);
        m_keyring->answerPrompt({PrivateKeyring::kPassword});
        QTRY_COMPARE(m_keyring->prompts(), 0);
    }

    /// Watches the store, and counts what it tells.
    void watch()
    {
        m_store->unlock([this] {
            ++m_changes;
            m_readable = m_store->read(kService, kAccount).has_value();
        });
    }

    std::unique_ptr<PrivateKeyring> m_keyring;
    std::unique_ptr<QTemporaryDir> m_data;
    std::unique_ptr<LibsecretStore> m_store;
    int m_changes = 0;
    bool m_readable = false; ///< At the latest change.
};

TESSERY_TEST_MAIN(QCoreApplication, LibsecretStoreTest)

#include "LibsecretStoreTest.moc"
