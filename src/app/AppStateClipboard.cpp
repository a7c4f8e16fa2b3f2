#include "app/AppState.h"

#include "app/ClipboardImage.h"
#include "base/Clock.h"
#include "base/FileName.h"
#include "base/Log.h"
#include "base/LoggedName.h"
#include "base/SystemError.h"
#include "base/TemporaryFile.h"
#include "platform/Platform.h"

#include <utility>

using namespace Qt::StringLiterals;

void AppState::uploadClipboard()
{
    m_tasks.start(handleUploadClipboard());
}

QCoro::Task<> AppState::handleUploadClipboard()
{
    Log::line(u"📋 Upload clipboard triggered"_s);
    if (!m_settings.isValid()) {
        Log::line(u"❌ Settings not valid"_s);
        askForSettings();
        co_return;
    }

    // A list of files also reports text, and a picture of its icon: the order decides. What was
    // read, and the way to it, is given back before the upload, which may take long.
    std::unique_ptr<PasteboardContent> content = m_platform.pasteboard->content();
    const QList<QUrl> addresses = co_await content->addresses();
    if (!addresses.isEmpty()) {
        content.reset();
        co_await uploadClipboardAddress(addresses.constFirst());
        co_return;
    }
    QString text = co_await content->text();
    if (!text.isEmpty()) {
        content.reset();
        co_await uploadClipboardText(std::move(text));
        co_return;
    }
    std::optional<QByteArray> image = co_await content->image();
    content.reset();
    if (image) {
        co_await uploadClipboardImage(std::move(*image));
        co_return;
    }
    sendNotification(u"❌ Clipboard Empty"_s, u"No file, text, or image found in clipboard"_s,
                     true);
}

QCoro::Task<> AppState::uploadClipboardAddress(QUrl address)
{
    const QString fileName = FileName::lastPathComponent(FileName::pathOf(address));
    Log::line(u"📋 Found file URL in clipboard: "_s + LoggedName::of(fileName));
    const QString remoteName = generateRemoteFilename(address);
    setLastUploadStatus(u"📤 Uploading "_s + fileName + u" from clipboard..."_s);
    sendNotification(u"Uploading from Clipboard"_s, fileName, false);
    co_await uploadFile(address, remoteName, fileName);
}

QCoro::Task<> AppState::uploadClipboardText(QString text)
{
    Log::line(u"📋 Found text in clipboard, creating text file"_s);
    std::shared_ptr<const TemporaryFile> file;
    try {
        file = clipboardFile(u".txt"_s, text.toUtf8());
        text.clear();
    } catch (const SystemError &error) {
        sendNotification(u"❌ Upload Failed"_s,
                         u"Could not create temp file: "_s + error.description(), true);
        co_return;
    }
    const QUrl fileURL = QUrl::fromLocalFile(file->path());
    const QString remoteName = generateRemoteFilename(fileURL);
    setLastUploadStatus(u"📤 Uploading text from clipboard..."_s);
    sendNotification(u"Uploading Text"_s, u"Text content from clipboard"_s, false);
    co_await uploadFile(fileURL, remoteName, u"clipboard text"_s);
}

QCoro::Task<> AppState::uploadClipboardImage(QByteArray image)
{
    Log::line(u"📋 Found image in clipboard, creating PNG file"_s);
    std::optional<QByteArray> png = co_await ClipboardImage::pngData(std::move(image));
    if (!png) {
        sendNotification(u"❌ Upload Failed"_s, u"Could not convert clipboard image to PNG"_s,
                         true);
        co_return;
    }
    std::shared_ptr<const TemporaryFile> file;
    try {
        file = clipboardFile(u".png"_s, *png);
        png.reset();
    } catch (const SystemError &error) {
        sendNotification(u"❌ Upload Failed"_s,
                         u"Could not save clipboard image: "_s + error.description(), true);
        co_return;
    }
    const QUrl fileURL = QUrl::fromLocalFile(file->path());
    const QString remoteName = generateRemoteFilename(fileURL);
    setLastUploadStatus(u"📤 Uploading image from clipboard..."_s);
    sendNotification(u"Uploading Image"_s, u"Image from clipboard"_s, false);
    co_await uploadFile(fileURL, remoteName, u"clipboard image"_s);
}

std::shared_ptr<const TemporaryFile> AppState::clipboardFile(const QString &suffix,
                                                             const QByteArray &contents)
{
    const QString path = m_temporaryFolder + u"/clipboard_"_s + m_clock.wholeSeconds() + suffix;
    std::erase_if(m_clipboardFiles, [](const auto &file) { return file.second.expired(); });
    std::weak_ptr<TemporaryFile> &known = m_clipboardFiles[path];
    std::shared_ptr<TemporaryFile> file = known.lock();
    if (file) {
        file->replaceContents(contents);
    } else {
        file = std::make_shared<TemporaryFile>(path, contents);
        known = file;
    }
    return file;
}
