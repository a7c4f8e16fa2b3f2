#include "base/Log.h"
#include "base/UniqueFd.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// The program that logs, with the file given as its standard output (none if it is negative).
class Writer {
public:
    Writer(int output, const QStringList &arguments)
    {
        m_process.setChildProcessModifier([output] {
            if (output >= 0)
                ::dup2(output, STDOUT_FILENO);
            else
                ::close(STDOUT_FILENO);
        });
        m_process.start(QStringLiteral(LOG_WRITER), arguments);
    }

    /// What it has told on standard error.
    QByteArray told()
    {
        m_told += m_process.readAllStandardError();
        return m_told;
    }
    /// True once it has logged all that it should.
    bool isDone() { return told().endsWith("done\n"); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }

    /// True if it ends well once it is let go.
    bool endsWell()
    {
        m_process.closeWriteChannel();
        return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit
            && m_process.exitCode() == 0;
    }

private:
    QProcess m_process;
    QByteArray m_told;
};

struct Pipe {
    Pipe()
    {
        std::array<int, 2> ends = {};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            reader = UniqueFd(ends[0]);
            writer = UniqueFd(ends[1]);
        }
    }
    UniqueFd reader;
    UniqueFd writer;
};

/// What can be read at once.
QByteArray readSome(int fd)
{
    ::fcntl(fd, F_SETFL, O_NONBLOCK);
    QByteArray all;
    QByteArray part(65536, Qt::Uninitialized);
    for (;;) {
        const ssize_t count = ::read(fd, part.data(), static_cast<std::size_t>(part.size()));
        if (count <= 0)
            return all;
        all.append(part.constData(), count);
    }
}

/// The lines "0", "1" and so on up to count, exclusively.
QByteArray numbers(int count)
{
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += QByteArray::number(i) + '\n';
    return lines;
}

} // namespace

class LogTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void linesReachAPipeAtOnce()
    {
        Pipe pipe;
        Writer writer(pipe.writer.get(), {u"line"_s, u"✅ Bereit: ü"_s, u"line"_s, u""_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.isRunning());
        QCOMPARE(readSome(pipe.reader.get()), "✅ Bereit: ü\n\n");
        QVERIFY(writer.endsWell());
    }

    void linesReachAFile()
    {
        QTemporaryDir folder;
        QFile file(folder.filePath(u"log"_s));
        QVERIFY(file.open(QIODevice::ReadWrite));
        Writer writer(file.handle(), {u"line"_s, u"a"_s, u"batch"_s, u"20000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.endsWell());
        QVERIFY(file.seek(0));
        QCOMPARE(file.readAll(), "a\n" + numbers(20000));
    }

    void batchGoesOutInOneWrite()
    {
        // Each write to such a socket is one message.
        std::array<int, 2> ends = {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()), 0);
        const UniqueFd reader(ends[0]);
        const UniqueFd output(ends[1]);
        Writer writer(
            output.get(),
            {u"line"_s, u"a"_s, u"batch"_s, u"3"_s, u"batch"_s, u"0"_s, u"batch"_s, u"5000"_s});
        QTRY_VERIFY(writer.isDone());
        QByteArrayList messages;
        QByteArray message(200000, Qt::Uninitialized);
        for (;;) {
            const ssize_t count = ::recv(reader.get(), message.data(),
                                         static_cast<std::size_t>(message.size()), MSG_DONTWAIT);
            if (count <= 0)
                break;
            messages << message.left(count);
        }
        QCOMPARE(messages, QByteArrayList({"a\n", numbers(3), numbers(5000)}));
        QVERIFY(writer.endsWell());
    }

    void fullPipeDoesNotBlock_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::newRow("opened anew") << QStringList();
        QTest::newRow("as it is") << QStringList{u"--starved"_s};
    }
    void fullPipeDoesNotBlock()
    {
        QFETCH(QStringList, before);
        Pipe pipe;
        Writer writer(pipe.writer.get(), before + QStringList{u"lines"_s, u"500000"_s});
        QTRY_VERIFY(writer.isDone());

        // Nobody has read yet; what the log kept comes once somebody does.
        QByteArray read;
        const auto hasMore = [&read, &pipe] {
            const qsizetype size = read.size();
            read += readSome(pipe.reader.get());
            return read.size() > size;
        };
        QTRY_VERIFY(!hasMore() && read.size() > 1024 * 1024);
        QVERIFY(read.endsWith('\n'));
        QVERIFY(read.size() < 1024 * 1024 + 2 * 65536);
        QVERIFY(numbers(500000).startsWith(read));
        QVERIFY(writer.endsWell());
        // Others who share the pipe are not affected.
        QCOMPARE(::fcntl(pipe.writer.get(), F_GETFL) & O_NONBLOCK, 0);
    }

    void fullSocketDoesNotBlock()
    {
        std::array<int, 2> ends = {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        const UniqueFd reader(ends[0]);
        const UniqueFd output(ends[1]);
        Writer writer(output.get(), {u"lines"_s, u"500000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(numbers(500000).startsWith(readSome(reader.get())));
        QVERIFY(writer.endsWell());
    }

    void closedPipeIsNoTrouble_data()
    {
        QTest::addColumn<QStringList>("before");
        QTest::newRow("opened anew") << QStringList();
        QTest::newRow("as it is") << QStringList{u"--starved"_s};
    }
    void closedPipeIsNoTrouble()
    {
        QFETCH(QStringList, before);
        Pipe pipe;
        pipe.reader = {};
        Writer writer(pipe.writer.get(), before + QStringList{u"lines"_s, u"1000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.endsWell());
    }

    void pipeClosedWhileLinesAreKeptIsNoTrouble()
    {
        Pipe pipe;
        Writer writer(pipe.writer.get(), {u"lines"_s, u"500000"_s});
        QTRY_VERIFY(writer.isDone());
        pipe.reader = {};
        QVERIFY(writer.endsWell());
    }

    void closedSocketIsNoTrouble()
    {
        std::array<int, 2> ends = {};
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
        const UniqueFd output(ends[1]);
        ::close(ends[0]);
        Writer writer(output.get(), {u"lines"_s, u"1000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.endsWell());
    }

    void fullDeviceIsNoTrouble()
    {
        const UniqueFd full(::open("/dev/full", O_WRONLY | O_CLOEXEC));
        Writer writer(full.get(), {u"lines"_s, u"1000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.endsWell());
    }

    void missingOutputIsNoTrouble()
    {
        // A file opened later must not be mistaken for standard output.
        Writer writer(-1, {u"open"_s, u"/etc/passwd"_s, u"lines"_s, u"1000"_s});
        QTRY_VERIFY(writer.isDone());
        QVERIFY(writer.told().startsWith("opened "));
        QVERIFY(!writer.told().startsWith("opened 1\n"));
        QVERIFY(writer.endsWell());
    }
};

TESSERY_TEST_MAIN(QCoreApplication, LogTest)
#include "LogTest.moc"
