#include "settings/UploadSettings.h"

#include "base/Clock.h"
#include "base/FileName.h"
#include "base/SecureRandom.h"

#include <QLocale>
#include <QStringList>
#include <QTextBoundaryFinder>

using namespace Qt::StringLiterals;

namespace {

constexpr auto kLowercase = "abcdefghijklmnopqrstuvwxyz"_L1;
constexpr auto kUppercase = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"_L1;
constexpr auto kDigits = "0123456789"_L1;

/// text cut into what a reader takes for single characters.
QStringList characters(const QString &text)
{
    QStringList result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype start = 0, end = finder.toNextBoundary(); end >= 0;
         start = end, end = finder.toNextBoundary())
        result << text.mid(start, end - start);
    return result;
}

QString withExtension(const QString &base, const QString &extension)
{
    return extension.isEmpty() ? base : QString(base + u'.' + extension);
}

} // namespace

QString UploadSettings::RandomFilenameConfig::characterPool() const
{
    QString pool;
    if (useLowercase)
        pool += kLowercase;
    if (useUppercase)
        pool += kUppercase;
    if (useNumbers)
        pool += kDigits;
    if (useSymbols)
        pool += customSymbols;
    return pool.isEmpty() ? QString(kLowercase) : pool;
}

QString UploadSettings::RandomFilenameConfig::generateRandomString(SecureRandom &random) const
{
    if (length < 0)
        qFatal("The length of a random file name is negative");
    const QStringList pool = characters(characterPool());
    const auto poolSize = static_cast<std::uint64_t>(pool.size());
    QString result;
    for (std::int64_t i = 0; i < length; ++i)
        result += pool.at(static_cast<qsizetype>(random.bounded(poolSize)));
    return result;
}

QString generateFilename(UploadSettings::FilenameStyle style, const QUrl &fileURL,
                         const UploadSettings::RandomFilenameConfig &config, const Clock &clock,
                         SecureRandom &random)
{
    const QString path = FileName::pathOf(fileURL);
    switch (style) {
    case UploadSettings::FilenameStyle::original:
        return FileName::lastPathComponent(path);
    case UploadSettings::FilenameStyle::random:
        return withExtension(config.generateRandomString(random), FileName::pathExtension(path));
    case UploadSettings::FilenameStyle::timestamp:
        return withExtension(clock.wholeSeconds(), FileName::pathExtension(path));
    }
    Q_UNREACHABLE();
}

QString remoteFilename(const UploadSettings &settings, const QUrl &fileURL, const Clock &clock,
                       SecureRandom &random)
{
    const QString name = generateFilename(settings.filenameStyle, fileURL,
                                          settings.randomFilenameConfig, clock, random);
    return settings.addDateToFilename ? addDate(name, clock) : name;
}

QString addDate(const QString &name, const Clock &clock)
{
    const QString suffix = u'_' + QLocale().toString(clock.now().date(), u"yyyy-MM-dd");
    // Other than elsewhere, a name may be an extension and nothing else: a random one of length 0.
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= name.lastIndexOf(u'/') || dot == name.size() - 1)
        return name + suffix;
    return name.left(dot) + suffix + name.mid(dot);
}
