#include "monitor/ScreenshotName.h"

#include "monitor/ScreenshotPrefixes.h"

#include <QChar>
#include <QString>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <ranges>

namespace {

/// A set of prefixes: bit i stands for kScreenshotPrefixes[i].
using PrefixSet = std::uint64_t;

/// So many characters tell most names from all prefixes.
constexpr std::size_t kDistinctive = 4;

constexpr bool isAsciiCharacter(char32_t character)
{
    return character < 0x80;
}

constexpr char32_t asciiLower(char32_t character)
{
    return character >= U'A' && character <= U'Z' ? character + (U'a' - U'A') : character;
}

/// What character decomposes into first, for the first kDistinctive characters of the prefixes.
constexpr char32_t decomposed(char32_t character)
{
    switch (character) {
    case U'ả':
    case U'ä':
    case U'á':
    case U'ā':
        return U'a';
    case U'é':
        return U'e';
    case U'í':
        return U'i';
    case U'스':
        return U'\u1109';
    case U'화':
        return U'\u1112';
    default:
        return character;
    }
}

/// The prefixes whose character at index is lower, or decomposes so that lower comes first.
constexpr PrefixSet prefixesWith(char32_t lower, std::size_t index)
{
    PrefixSet prefixes = 0;
    for (std::size_t i = 0; i < kScreenshotPrefixes.size(); ++i) {
        if (index >= kScreenshotPrefixes[i].size())
            continue;
        const char32_t character = kScreenshotPrefixes[i][index];
        if (character == lower || decomposed(character) == lower)
            prefixes |= PrefixSet(1) << i;
    }
    return prefixes;
}

/// prefixesWith() each ASCII character, in either case, by index.
constexpr auto kByAscii = [] {
    std::array<std::array<PrefixSet, 128>, kDistinctive> table = {};
    for (std::size_t index = 0; index < kDistinctive; ++index) {
        for (char32_t character = 0; character < 128; ++character)
            table[index][character] = prefixesWith(asciiLower(character), index);
    }
    return table;
}();

struct FirstCharacter {
    char32_t character = 0;
    PrefixSet prefixes = 0;
};

/// The other characters with which, in lower case, a prefix may begin, in ascending order.
constexpr auto kOtherFirst = [] {
    std::array<FirstCharacter, 17> table = {};
    std::size_t size = 0;
    for (const std::u32string_view prefix : kScreenshotPrefixes) {
        for (const char32_t first : {prefix[0], decomposed(prefix[0])}) {
            const bool isNew = std::none_of(
                table.begin(), table.begin() + size,
                [first](const FirstCharacter &other) { return other.character == first; });
            if (!isAsciiCharacter(first) && isNew)
                table.at(size++) = {first, prefixesWith(first, 0)};
        }
    }
    std::ranges::sort(table, {}, &FirstCharacter::character);
    return table;
}();

/// Walks over the characters of valid UTF-8.
class Characters {
public:
    explicit Characters(std::string_view utf8) : m_rest(utf8) { }

    bool atEnd() const { return m_rest.empty(); }
    bool isBeforeAscii() const { return static_cast<signed char>(m_rest.front()) >= 0; }

    char32_t next()
    {
        const unsigned lead = byte(0);
        if (lead < 0x80)
            return take(1, lead);
        if (lead < 0xE0)
            return take(2, (lead & 0x1F) << 6 | tail(1));
        if (lead < 0xF0)
            return take(3, (lead & 0x0F) << 12 | tail(1) << 6 | tail(2));
        return take(4, (lead & 0x07) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3));
    }

private:
    unsigned byte(std::size_t index) const { return static_cast<unsigned char>(m_rest[index]); }
    unsigned tail(std::size_t index) const { return byte(index) & 0x3F; }
    char32_t take(std::size_t size, unsigned character)
    {
        m_rest.remove_prefix(size);
        return character;
    }

    std::string_view m_rest;
};

constexpr char32_t kCapitalSigma = U'Σ';

/// In lower case, as far as that is one character whatever stands around it.
char32_t lowerOf(char32_t character)
{
    return isAsciiCharacter(character) ? asciiLower(character) : QChar::toLower(character);
}

bool mayBeEquivalentToOthers(char32_t character)
{
    return character == kCapitalSigma || QChar::decompositionTag(character) == QChar::Canonical;
}

enum class Match {
    No,
    Yes,
    Unsure, ///< It takes normalisation to tell.
};

/// Compares character by character, which settles nearly all names.
Match quickMatch(Characters name, std::u32string_view prefix)
{
    for (const char32_t expected : prefix) {
        if (name.atEnd())
            return Match::No;
        const char32_t character = name.next();
        if (lowerOf(character) == expected)
            continue;
        const bool standsAlone =
            isAsciiCharacter(character) && (name.atEnd() || name.isBeforeAscii());
        if (standsAlone
            || (!mayBeEquivalentToOthers(character) && !mayBeEquivalentToOthers(expected)))
            return Match::No;
        return Match::Unsure;
    }
    return name.atEnd() || name.isBeforeAscii() ? Match::Yes : Match::Unsure;
}

/// The prefixes that are left when the beginning of name is looked at.
PrefixSet candidatesFor(std::string_view name)
{
    Characters characters(name);
    const char32_t first = lowerOf(characters.next());
    if (isAsciiCharacter(first)) {
        PrefixSet prefixes = kByAscii[0][first];
        for (std::size_t i = 1; i < kDistinctive && prefixes != 0; ++i) {
            if (characters.atEnd() || !characters.isBeforeAscii())
                break;
            prefixes &= kByAscii[i][characters.next()];
        }
        return prefixes;
    }
    const auto found = std::ranges::lower_bound(kOtherFirst, first, {}, &FirstCharacter::character);
    return found != kOtherFirst.end() && found->character == first ? found->prefixes : 0;
}

/// Unicode's Case_Ignorable.
bool isIgnoredByCase(char32_t character)
{
    constexpr std::array kCategories = {QChar::Mark_NonSpacing, QChar::Mark_Enclosing,
                                        QChar::Other_Format, QChar::Letter_Modifier,
                                        QChar::Symbol_Modifier};
    constexpr std::u32string_view kInsideWords = U"'.:\u00B7\u0387\u055F\u05F4\u2018\u2019\u2024"
                                                 U"\u2027\uFE13\uFE52\uFE55\uFF07\uFF0E\uFF1A";
    return std::ranges::find(kCategories, QChar::category(character)) != kCategories.end()
        || kInsideWords.find(character) != std::u32string_view::npos;
}

bool hasCase(char32_t character)
{
    return QChar::isLower(character) || QChar::isUpper(character) || QChar::isTitleCase(character);
}

/// Whether the capital sigma at index ends a word.
bool isFinalSigma(std::u32string_view text, std::size_t index)
{
    const auto isCased = [](auto characters) {
        const auto letter = std::ranges::find_if_not(characters, isIgnoredByCase);
        return letter != characters.end() && hasCase(*letter);
    };
    return isCased(text.substr(0, index) | std::views::reverse) && !isCased(text.substr(index + 1));
}

/// Full lower-casing. QString leaves out the one rule that depends on what stands around a
/// character: a sigma that ends a word has a form of its own.
QString lowerCased(const QString &text)
{
    if (!text.contains(QChar(kCapitalSigma)))
        return text.toLower();
    std::u32string characters = text.toStdU32String();
    for (std::size_t i = 0; i < characters.size(); ++i) {
        if (characters[i] == kCapitalSigma && isFinalSigma(characters, i))
            characters[i] = U'ς';
    }
    return QString::fromStdU32String(characters).toLower();
}

/// The last word: lower-cases and normalises all of name.
bool beginsWithAny(std::string_view name, PrefixSet candidates)
{
    const QString text = lowerCased(QString::fromUtf8(name.data(), qsizetype(name.size())))
                             .normalized(QString::NormalizationForm_C);
    for (; candidates != 0; candidates &= candidates - 1) {
        const std::u32string_view prefix = kScreenshotPrefixes[std::countr_zero(candidates)];
        const QString start = QString::fromUcs4(prefix.data(), qsizetype(prefix.size()));
        if (!text.startsWith(start))
            continue;
        // A mark that follows belongs to the prefix's last character and makes it another one. The
        // boundary finder goes by script and separates a mark from another script.
        QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, text);
        characters.setPosition(start.size());
        const bool isBeforeMark = text.size() > start.size() && text.at(start.size()).isMark();
        if (characters.isAtBoundary() && !isBeforeMark)
            return true;
    }
    return false;
}

bool isScreenshot(std::string_view name)
{
    if (name.empty())
        return false;
    PrefixSet unsure = 0;
    for (PrefixSet left = candidatesFor(name); left != 0; left &= left - 1) {
        const int i = std::countr_zero(left);
        switch (quickMatch(Characters(name), kScreenshotPrefixes[i])) {
        case Match::Yes:
            return true;
        case Match::Unsure:
            unsure |= PrefixSet(1) << i;
            break;
        case Match::No:
            break;
        }
    }
    return unsure != 0 && beginsWithAny(name, unsure);
}

/// name's extension is one of those that images have, in whatever case. No character beyond ASCII
/// has one of these letters as its lower case.
bool hasImageExtension(std::string_view name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return false;
    const std::string_view extension = name.substr(dot + 1);
    constexpr std::array<std::string_view, 6> kExtensions = {"png", "jpg",  "jpeg",
                                                             "gif", "tiff", "heic"};
    return std::ranges::any_of(kExtensions, [extension](std::string_view known) {
        return std::ranges::equal(extension, known, {}, [](char c) {
            return static_cast<char>(asciiLower(static_cast<unsigned char>(c)));
        });
    });
}

} // namespace

ScreenshotName::Kind ScreenshotName::kindOf(std::string_view name)
{
    if (isScreenshot(name))
        return Kind::Screenshot;
    return hasImageExtension(name) ? Kind::OtherImage : Kind::Other;
}

std::string ScreenshotName::canonicalKey(std::string_view name)
{
    if (isAscii(name))
        return std::string(name);
    return QString::fromUtf8(name.data(), qsizetype(name.size()))
        .normalized(QString::NormalizationForm_C)
        .toStdString();
}

bool ScreenshotName::isAscii(std::string_view name)
{
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::uint64_t word = 0;
    if (name.size() < sizeof word) {
        std::memcpy(&word, name.data(), name.size());
        return (word & kHighBits) == 0;
    }
    const auto wordAt = [name, &word](std::size_t index) {
        std::memcpy(&word, name.data() + index, sizeof word);
        return word;
    };
    std::uint64_t bits = wordAt(name.size() - sizeof word);
    for (std::size_t index = 0; index + sizeof word <= name.size(); index += sizeof word)
        bits |= wordAt(index);
    return (bits & kHighBits) == 0;
}
