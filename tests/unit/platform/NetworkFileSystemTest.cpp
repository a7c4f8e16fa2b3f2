#include "platform/linux/NetworkFileSystem.h"

#include "support/TestMain.h"

#include <QTest>

class NetworkFileSystemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }
    void typesAreTold_data();
    void typesAreTold();
    void localPathsAreTold();
};

void NetworkFileSystemTest::typesAreTold_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<bool>("isNetwork");
    QTest::newRow("nfs") << 0x6969U << true;
    QTest::newRow("smb") << 0x517BU << true;
    QTest::newRow("cifs") << 0xFF534D42U << true;
    QTest::newRow("smb2") << 0xFE534D42U << true;
    QTest::newRow("fuse") << 0x65735546U << true;
    QTest::newRow("9p") << 0x01021997U << true;
    QTest::newRow("afs") << 0x5346414FU << true;
    QTest::newRow("kernel afs") << 0x6B414653U << true;
    QTest::newRow("ceph") << 0x00C36400U << true;
    QTest::newRow("coda") << 0x73757245U << true;
    QTest::newRow("ext4") << 0xEF53U << false;
    QTest::newRow("btrfs") << 0x9123683EU << false;
    QTest::newRow("xfs") << 0x58465342U << false;
    QTest::newRow("tmpfs") << 0x01021994U << false;
    QTest::newRow("overlay") << 0x794C7630U << false;
    QTest::newRow("zfs") << 0x2FC12FC1U << false;
}

void NetworkFileSystemTest::typesAreTold()
{
    QFETCH(quint32, type);
    QFETCH(bool, isNetwork);
    QCOMPARE(NetworkFileSystem::isOne(type), isNetwork);
}

void NetworkFileSystemTest::localPathsAreTold()
{
    QVERIFY(!NetworkFileSystem::holds("/proc/self"));
    QVERIFY(!NetworkFileSystem::holds("/proc/self/missing"));
}

TESSERY_TEST_MAIN(QCoreApplication, NetworkFileSystemTest)
#include "NetworkFileSystemTest.moc"
