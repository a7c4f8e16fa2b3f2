#include "monitor/KnownFiles.h"

#include "support/TestMain.h"

#include <QTest>

class KnownFilesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void insertedNameIsKnown();
    void equivalentNameIsKnown();
    void equivalentNamesCountOnce();
    void orderOfTheLastPassIsRecognised();
    void beginningOrExtensionOfTheNextNameIsNotIt();
    void changedOrderIsLearntAnew();
};

void KnownFilesTest::insertedNameIsKnown()
{
    KnownFiles files;
    QVERIFY(!files.contains("a"));
    files.insert("a");
    QVERIFY(files.contains("a"));
    QVERIFY(!files.contains("A"));
    QVERIFY(!files.contains("ab"));
}

void KnownFilesTest::equivalentNameIsKnown()
{
    KnownFiles files;
    files.insert("Ke\u0301p");
    QVERIFY(files.contains("Kép"));
    QVERIFY(files.contains("Ke\u0301p"));
    QVERIFY(!files.contains("Kep"));
}

void KnownFilesTest::equivalentNamesCountOnce()
{
    KnownFiles files;
    files.insert("Ke\u0301p");
    files.insert("Kép");
    files.insert("Kep");
    QCOMPARE(files.count(), std::size_t(2));
}

void KnownFilesTest::orderOfTheLastPassIsRecognised()
{
    KnownFiles files;
    for (const char *name : {"a", "bb", "é"})
        files.insert(name);
    files.beginPass();
    QVERIFY(!files.isNextAgain("bb"));
    QVERIFY(files.contains("bb"));
    QVERIFY(files.contains("e\u0301"));
    for (int pass = 0; pass < 3; ++pass) {
        files.beginPass();
        QVERIFY(!files.isNextAgain("e\u0301"));
        QVERIFY(files.isNextAgain("bb"));
        QVERIFY(files.isNextAgain("e\u0301"));
        QVERIFY(!files.isNextAgain("a"));
    }
}

void KnownFilesTest::beginningOrExtensionOfTheNextNameIsNotIt()
{
    KnownFiles files;
    files.insert("ab");
    files.beginPass();
    QVERIFY(files.contains("ab"));
    files.beginPass();
    QVERIFY(!files.isNextAgain("a"));
    QVERIFY(!files.isNextAgain("abc"));
    QVERIFY(!files.isNextAgain(""));
    QVERIFY(files.isNextAgain("ab"));
}

void KnownFilesTest::changedOrderIsLearntAnew()
{
    KnownFiles files;
    for (const char *name : {"a", "b", "c"})
        files.insert(name);
    files.beginPass();
    QVERIFY(files.contains("a"));
    QVERIFY(files.contains("b"));
    QVERIFY(files.contains("c"));
    files.beginPass();
    QVERIFY(!files.isNextAgain("b"));
    QVERIFY(files.contains("b"));
    QVERIFY(!files.isNextAgain("c"));
    QVERIFY(files.contains("c"));
    files.beginPass();
    QVERIFY(files.isNextAgain("b"));
    QVERIFY(files.isNextAgain("c"));
}

TESSERY_TEST_MAIN(QCoreApplication, KnownFilesTest)
#include "KnownFilesTest.moc"
