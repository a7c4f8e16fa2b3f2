#include "ui/settings/FilenamePreview.h"

#include <QTextBoundaryFinder>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int kShownCharacters = 40;

/// No name that is shown needs more characters than fit into the window many times over, and a
/// stored length that names cannot be drawn with must not keep the user from mending it.
constexpr std::int64_t kLongestDrawn = 256;

UploadSettings::RandomFilenameConfig drawable(UploadSettings::RandomFilenameConfig config)
{
    config.length = std::clamp<std::int64_t>(config.length, 0, kLongestDrawn);
    return config;
}

} // namespace

QString FilenamePreview::name(const UploadSettings &settings, const Clock &clock,
                              SecureRandom &random)
{
    const QUrl sample = QUrl::fromLocalFile(u"/Screenshot 2025-12-01 at 21.31.56.png"_s);
    UploadSettings drawn = settings;
    drawn.randomFilenameConfig = drawable(settings.randomFilenameConfig);
    return remoteFilename(drawn, sample, clock, random);
}

QString FilenamePreview::randomExample(const UploadSettings::RandomFilenameConfig &config,
                                       SecureRandom &random)
{
    return drawable(config).generateRandomString(random) + u".png"_s;
}

QString FilenamePreview::shownPool(const QString &pool)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, pool);
    qsizetype end = 0;
    for (int count = 0; count < kShownCharacters && end >= 0; ++count)
        end = finder.toNextBoundary();
    if (end < 0 || end == pool.size())
        return pool;
    return pool.left(end) + u"..."_s;
}
