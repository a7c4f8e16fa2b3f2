#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// Offers the content of a file in a form; as an image in all the forms that Qt makes of one.
bool offer(QMimeData *content, const QString &form, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray data = file.readAll();
    if (form == u"image"_s)
        content->setImageData(QImage::fromData(data));
    else if (form == u"text"_s)
        content->setText(QString::fromUtf8(data));
    else
        content->setData(form, data);
    return true;
}

} // namespace

/// Copies the way Qt programs do: QtClipboardOwner FORM FILE [FORM FILE]... Owns the clipboard
/// until it is ended. FORM is "text", "image" or a MIME type.
int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    auto content = std::make_unique<QMimeData>();
    for (qsizetype i = 1; i + 1 < arguments.size(); i += 2) {
        if (!offer(content.get(), arguments.at(i), arguments.at(i + 1)))
            return 1;
    }
    QGuiApplication::clipboard()->setMimeData(content.release()); // The clipboard owns it.
    return QGuiApplication::exec();
}
