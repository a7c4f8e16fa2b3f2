#include "ui/settings/SettingsView.h"

#include "app/AppState.h"
#include "ui/settings/ActionButton.h"

#include <QFile>
#include <QUrl>
#include <QUuid>

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Makes a new file for its owner alone. False if that fails.
bool writeTestFile(const QString &path)
{
    QFile file(path);
    const QByteArray contents("Test");
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly,
                     QFile::ReadOwner | QFile::WriteOwner)
        && file.write(contents) == contents.size() && file.flush();
}

} // namespace

void SettingsView::startTest()
{
    if (m_isTesting)
        return;
    m_password.flush();
    if (!isValid())
        return;
    // Once disabled, the button would hand the keyboard on to "Save", which a second press saved.
    m_testButton->clearFocus();
    m_isTesting = true;
    m_testResult = u"Testing..."_s;
    render();
    UploadService::Environment environment = m_services.environment;
    environment.stop = m_appState.tasks().stopToken();
    m_appState.tasks().start(testConnection(this, std::move(environment), m_draft.settings()));
}

QCoro::Task<> SettingsView::testConnection(QPointer<SettingsView> view,
                                           UploadService::Environment environment,
                                           UploadSettings settings)
{
    const QString name =
        u"test_"_s + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + u".txt"_s;
    const QString path = environment.temporaryFolder + u'/' + name;
    bool succeeded = false;
    if (writeTestFile(path)) {
        UploadService service(std::move(environment));
        try {
            co_await service.upload(QUrl::fromLocalFile(path), settings, name);
            succeeded = true;
        } catch (const std::exception &) {
            // The badge says that it failed, and the file stays for a look at what was sent.
        }
    }
    if (succeeded)
        QFile::remove(path);
    if (view)
        view->finishTest(succeeded);
}

void SettingsView::finishTest(bool succeeded)
{
    m_isTesting = false;
    m_testResult.clear();
    setSaveMessage(succeeded ? u"Connection OK!"_s : u"Connection failed"_s);
    clearSaveMessageAfter(m_services.testMessageTime);
    if (!focusWidget() && m_testButton->isVisible())
        m_testButton->setFocus(Qt::OtherFocusReason);
}
