#include "platform/linux/FolderPoll.h"

#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

class FolderPollTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void newEntryIsAChangeOfTheSameFolder();
    void quietFolderIsNoChange();
    void disappearanceAndReturnAreChanges();
    void replacementIsAnotherFolder();
    void fileIsNoFolder();
    void folderThatCannotBeOpenedIsNotPolled();

private:
    using Change = std::pair<FolderState, FolderState>;

    QByteArray path() const { return QFile::encodeName(m_folder->filePath(u"watched"_s)); }

    std::optional<QTemporaryDir> m_folder;
    std::optional<FolderPoll> m_poll;
    std::vector<Change> m_changes;
};

void FolderPollTest::init()
{
    TestSurroundings::failOnWarnings();
    m_folder.emplace();
    m_changes.clear();
    QVERIFY(QDir(m_folder->path()).mkdir(u"watched"_s));
    m_poll.emplace(path(), [this](const FolderState &before, const FolderState &now) {
        m_changes.emplace_back(before, now);
    });
}

void FolderPollTest::cleanup()
{
    m_poll.reset();
    m_folder.reset();
}

void FolderPollTest::newEntryIsAChangeOfTheSameFolder()
{
    QVERIFY(QDir(m_folder->filePath(u"watched"_s)).mkdir(u"new"_s));
    QTRY_COMPARE(m_changes.size(), std::size_t(1));
    QVERIFY(m_changes[0].first.isSameFolderAs(m_changes[0].second));
    QVERIFY(m_changes[0].first.modified < m_changes[0].second.modified);
}

void FolderPollTest::quietFolderIsNoChange()
{
    QVERIFY(!QTest::qWaitFor([this] { return !m_changes.empty(); }, 2500));
}

void FolderPollTest::disappearanceAndReturnAreChanges()
{
    QVERIFY(QDir(m_folder->path()).rmdir(u"watched"_s));
    QTRY_COMPARE(m_changes.size(), std::size_t(1));
    QVERIFY(!m_changes[0].second.exists);
    QVERIFY(QDir(m_folder->path()).mkdir(u"watched"_s));
    QTRY_COMPARE(m_changes.size(), std::size_t(2));
    QVERIFY(m_changes[1].second.exists);
    QVERIFY(!m_changes[1].first.isSameFolderAs(m_changes[1].second));
}

void FolderPollTest::replacementIsAnotherFolder()
{
    QDir folder(m_folder->path());
    QVERIFY(folder.mkdir(u"other"_s));
    QVERIFY(folder.rename(u"watched"_s, u"away"_s));
    QVERIFY(folder.rename(u"other"_s, u"watched"_s));
    QTRY_COMPARE(m_changes.size(), std::size_t(1));
    QVERIFY(!m_changes[0].first.isSameFolderAs(m_changes[0].second));
}

void FolderPollTest::fileIsNoFolder()
{
    QVERIFY(FolderState::of(path()).exists);
    QFile file(m_folder->filePath(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(FolderState::of(QFile::encodeName(file.fileName())), FolderState());
    QCOMPARE(FolderState::of(path() + "/missing"), FolderState());
}

void FolderPollTest::folderThatCannotBeOpenedIsNotPolled()
{
    QVERIFY(FolderPoll::isPossible(path()));
    QVERIFY(FolderPoll::isPossible(path() + "/missing"));
    QVERIFY(FolderPoll::isPossible(path() + "/missing/below"));
    QVERIFY(QFile::link(u"circle"_s, m_folder->filePath(u"circle"_s)));
    QVERIFY(!FolderPoll::isPossible(QFile::encodeName(m_folder->filePath(u"circle"_s))));
}

TESSERY_TEST_MAIN(QCoreApplication, FolderPollTest)
#include "FolderPollTest.moc"
