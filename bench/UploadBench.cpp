// What UploadService.upload costs over the bare tool, started with the same arguments and waited
// for. Figures go to standard error; the log goes to /dev/null. The server's facts are the
// arguments; HOME holds the ".ssh" folder for the route with keys, and none for the others.

#include "PairedRatio.h"

#include "base/AppIdentifier.h"
#include "base/TemporaryFile.h"
#include "base/TemporaryFolder.h"
#include "support/FakePlatform.h"
#include "upload/CurlCommand.h"
#include "upload/ExpectScript.h"
#include "upload/Netrc.h"
#include "upload/SftpCommand.h"
#include "upload/UploadService.h"

#include <QCoro/QCoroTask>
#include <QCoreApplication>
#include <QDir>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int kFileSize = 300 * 1024;
const QString kRemoteName = u"shot.png"_s;

/// Runs a program with its outputs thrown away; ends this one if it fails.
void runBare(const QString &program, const QStringList &arguments)
{
    std::vector<QByteArray> texts = {QFile::encodeName(program)};
    for (const QString &argument : arguments)
        texts.push_back(argument.toUtf8());
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
    pid_t child = 0;
    int status =
        ::posix_spawn(&child, pointers.front(), &actions, nullptr, pointers.data(), environ);
    if (status == 0)
        ::waitpid(child, &status, 0);
    ::posix_spawn_file_actions_destroy(&actions);
    if (status != 0)
        qFatal("%s failed with %d", qUtf8Printable(program), status);
}

/// Waiting for a task that throws would never end, so that it must not.
QCoro::Task<> uploadOrDie(UploadService &service, QUrl file, UploadSettings settings)
{
    try {
        co_await service.upload(file, settings, kRemoteName);
    } catch (const std::exception &error) {
        qFatal("The upload failed: %s", error.what());
    }
}

/// The three routes to one server.
class Routes {
public:
    Routes(const UploadSettings &settings, const QString &password)
        : m_settings(settings)
        , m_password(password)
        , m_file(m_folder.path() + "/local.png"_L1, QByteArray(kFileSize, 'x'))
        , m_service(m_environment)
    {
        m_platform.fakeSecrets->items[{kAppIdentifier, u"serverPassword"_s}] = password.toUtf8();
    }

    void upload() { QCoro::waitFor(uploadOrDie(m_service, url(), m_settings)); }

    void compareCurl()
    {
        const TemporaryFile netrc(
            m_folder.path() + "/netrc"_L1,
            Netrc::contents(m_settings.hostname, m_settings.username, m_password).toUtf8());
        const QString url = CurlCommand::url(m_settings, m_settings.hostname, kRemoteName,
                                             CurlCommand::TlsFrom::FirstByte);
        const QStringList arguments = CurlCommand::arguments(
            m_settings, m_file.path(), netrc.path(), url, m_environment.limits);
        compare("upload, curl", 201, m_environment.curl, arguments);
    }

    void compareKeys()
    {
        const TemporaryFile batch(m_folder.path() + "/batch"_L1, batchText());
        compare("upload, sftp with keys", 31, m_environment.sftp,
                SftpCommand::arguments(m_settings, batch.path(), m_environment.limits));
    }

    void comparePassword()
    {
        const TemporaryFile batch(m_folder.path() + "/batch"_L1, batchText());
        const TemporaryFile script(
            m_folder.path() + "/script"_L1,
            ExpectScript::text(m_settings, batch.path(), m_password, m_environment.limits).toUtf8(),
            TemporaryFile::Mode::ReadWriteExecute);
        compare("upload, sftp with a password", 31, script.path(), {});
    }

private:
    QUrl url() const { return QUrl::fromLocalFile(m_file.path()); }

    QByteArray batchText() const
    {
        return SftpCommand::batchText(m_settings.remotePath, m_file.path(), kRemoteName).toUtf8();
    }

    void compare(const char *name, int rounds, const QString &program, const QStringList &arguments)
    {
        printPairedRatio(
            name, rounds, 1, [&] { runBare(program, arguments); }, [this] { upload(); });
    }

    FakePlatform m_platform;
    UploadSettings m_settings;
    QString m_password;
    TemporaryFolder m_folder;
    TemporaryFile m_file;
    UploadService::Environment m_environment{.homeFolder = QDir::homePath(),
                                             .temporaryFolder = m_folder.path()};
    UploadService m_service;
};

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList facts = QCoreApplication::arguments();
    if (facts.size() != 7)
        qFatal("UploadBench curl|keys|password HOST PORT USER PASSWORD FOLDER");
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (::dup2(nothing, STDOUT_FILENO) < 0)
        return EXIT_FAILURE;

    UploadSettings settings;
    settings.serverType =
        facts[1] == "curl"_L1 ? UploadSettings::ServerType::ftp : UploadSettings::ServerType::sftp;
    settings.hostname = facts[2];
    settings.port = facts[3].toInt();
    settings.username = facts[4];
    settings.remotePath = facts[6];
    Routes routes(settings, facts[5]);
    if (facts[1] == "curl"_L1)
        routes.compareCurl();
    else if (facts[1] == "keys"_L1)
        routes.compareKeys();
    else
        routes.comparePassword();
    return EXIT_SUCCESS;
}
