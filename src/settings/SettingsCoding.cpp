#include "settings/SettingsCoding.h"

#include <nlohmann/json.hpp>

#include <limits>
#include <string_view>
#include <unordered_set>

using nlohmann::json;
using nlohmann::ordered_json;
using SettingsCoding::DecodingError;

namespace {

/// No record comes near these bounds; what goes beyond would only cost time.
constexpr qsizetype kLargestSize = 1'048'576;
constexpr std::size_t kDeepestNesting = 512;
constexpr const char *kNoObject = "the data is not a JSON object";

/// A key as an error may tell it: the text may be anything.
std::string presentable(const std::string &key)
{
    constexpr std::size_t kLongest = 40;
    for (const char character : key) {
        const bool plain = (character >= 'a' && character <= 'z')
            || (character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9');
        if (!plain)
            return "a key";
    }
    return key.empty() || key.size() > kLongest ? "a key" : key;
}

/// Finds what the library lets through or goes slow on: duplicate keys and deep nesting. Its own
/// texts quote the data, which may hold a password, so none of them is used.
class Inspector final : public json::json_sax_t {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }

    bool start_object(std::size_t) override { return enter(); }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override
    {
        if (m_keys.empty())
            throw DecodingError(kNoObject);
        return enter();
    }
    bool end_array() override { return leave(); }

    bool key(string_t &name) override
    {
        if (!m_keys.back().insert(name).second)
            throw DecodingError(presentable(name) + " is there twice");
        return true;
    }

    bool parse_error(std::size_t position, const std::string &,
                     const nlohmann::detail::exception &) override
    {
        throw DecodingError("the data is not valid JSON, at byte " + std::to_string(position));
    }

private:
    bool enter()
    {
        if (m_keys.size() == kDeepestNesting)
            throw DecodingError("the data is nested too deeply");
        m_keys.emplace_back();
        return true;
    }
    bool leave()
    {
        m_keys.pop_back();
        return true;
    }

    /// Of each object or array that is open, the keys so far.
    std::vector<std::unordered_set<std::string>> m_keys;
};

json parse(const QByteArray &data)
{
    if (data.size() > kLargestSize)
        throw DecodingError("the data is too large");
    // The parser would take a NUL for the end and ignore the rest.
    if (const qsizetype position = data.indexOf('\0'); position >= 0)
        throw DecodingError("the data is not valid JSON, at byte " + std::to_string(position + 1));
    Inspector inspector;
    json::sax_parse(data.begin(), data.end(), &inspector);
    json value = json::parse(data.begin(), data.end());
    if (!value.is_object())
        throw DecodingError(kNoObject);
    return value;
}

/// Reads the members of one object, strictly. Errors name the member by its path.
class ObjectReader {
public:
    explicit ObjectReader(const json &object, std::string path = {})
        : m_object(object), m_path(std::move(path))
    {
    }

    void read(const char *key, QString &value) const
    {
        value = QString::fromStdString(
            member(key, json::value_t::string, "a text").get_ref<const std::string &>());
    }

    void read(const char *key, bool &value) const
    {
        value = member(key, json::value_t::boolean, "true or false").get<bool>();
    }

    void read(const char *key, std::int64_t &value) const
    {
        const json &number = member(key);
        constexpr auto kLargest = std::numeric_limits<std::int64_t>::max();
        // Numbers without a sign have a type of their own, and count as integers too.
        if (!number.is_number_integer()
            || (number.is_number_unsigned() && number.get<std::uint64_t>() > kLargest))
            throw DecodingError(m_path + key + " is not a whole number of 64 bits");
        value = number.get<std::int64_t>();
    }

    template <typename Enum>
        requires std::is_enum_v<Enum>
    void read(const char *key, Enum &value) const
    {
        value = fromText<Enum>(member(key), m_path + key);
    }

    template <typename Enum>
    void read(const char *key, std::vector<Enum> &values) const
    {
        values.clear();
        for (const json &element : member(key, json::value_t::array, "a list"))
            values.push_back(fromText<Enum>(element, "an element of " + m_path + key));
    }

    ObjectReader object(const char *key) const
    {
        return ObjectReader(member(key, json::value_t::object, "an object"), m_path + key + '.');
    }

private:
    const json &member(const char *key) const
    {
        const auto found = m_object.find(key);
        if (found == m_object.end())
            throw DecodingError(m_path + key + " is missing");
        return *found;
    }

    const json &member(const char *key, json::value_t type, const char *typeName) const
    {
        const json &value = member(key);
        if (value.type() != type)
            throw DecodingError(m_path + key + " is not " + typeName);
        return value;
    }

    template <typename Enum>
    static Enum fromText(const json &value, const std::string &path)
    {
        std::optional<Enum> result;
        if (value.is_string())
            result = fromStoredText<Enum>(QString::fromStdString(value.get<std::string>()));
        if (!result)
            throw DecodingError(path + " is not one of the known texts");
        return *result;
    }

    const json &m_object;
    std::string m_path;
};

std::string utf8(const QString &text)
{
    return text.toStdString();
}

template <typename Enum>
std::string utf8(Enum value)
{
    return utf8(storedText(value));
}

} // namespace

QByteArray SettingsCoding::encode(const UploadSettings &settings)
{
    const UploadSettings::RandomFilenameConfig &random = settings.randomFilenameConfig;
    const UploadSettings::KeyboardShortcut &shortcut = settings.uploadClipboardShortcut;
    ordered_json modifiers = ordered_json::array();
    for (const auto modifier : shortcut.modifiers)
        modifiers.push_back(utf8(modifier));

    const ordered_json record{
        {"serverType", utf8(settings.serverType)},
        {"hostname", utf8(settings.hostname)},
        {"port", settings.port},
        {"username", utf8(settings.username)},
        {"remotePath", utf8(settings.remotePath)},
        {"publicURLBase", utf8(settings.publicURLBase)},
        {"usePassiveMode", settings.usePassiveMode},
        {"allowInsecureCertificates", settings.allowInsecureCertificates},
        {"tlsVersion", utf8(settings.tlsVersion)},
        {"filenameStyle", utf8(settings.filenameStyle)},
        {"addDateToFilename", settings.addDateToFilename},
        {"randomFilenameConfig",
         {{"length", random.length},
          {"useLowercase", random.useLowercase},
          {"useUppercase", random.useUppercase},
          {"useNumbers", random.useNumbers},
          {"useSymbols", random.useSymbols},
          {"customSymbols", utf8(random.customSymbols)}}},
        {"uploadClipboardShortcut", {{"key", utf8(shortcut.key)}, {"modifiers", modifiers}}},
    };
    return QByteArray::fromStdString(record.dump());
}

UploadSettings SettingsCoding::decode(const QByteArray &data)
{
    const json root = parse(data);
    const ObjectReader record(root);
    UploadSettings settings;
    record.read("serverType", settings.serverType);
    record.read("hostname", settings.hostname);
    record.read("port", settings.port);
    record.read("username", settings.username);
    record.read("remotePath", settings.remotePath);
    record.read("publicURLBase", settings.publicURLBase);
    record.read("usePassiveMode", settings.usePassiveMode);
    record.read("allowInsecureCertificates", settings.allowInsecureCertificates);
    record.read("tlsVersion", settings.tlsVersion);
    record.read("filenameStyle", settings.filenameStyle);
    record.read("addDateToFilename", settings.addDateToFilename);

    const ObjectReader random = record.object("randomFilenameConfig");
    random.read("length", settings.randomFilenameConfig.length);
    random.read("useLowercase", settings.randomFilenameConfig.useLowercase);
    random.read("useUppercase", settings.randomFilenameConfig.useUppercase);
    random.read("useNumbers", settings.randomFilenameConfig.useNumbers);
    random.read("useSymbols", settings.randomFilenameConfig.useSymbols);
    random.read("customSymbols", settings.randomFilenameConfig.customSymbols);

    const ObjectReader shortcut = record.object("uploadClipboardShortcut");
    shortcut.read("key", settings.uploadClipboardShortcut.key);
    shortcut.read("modifiers", settings.uploadClipboardShortcut.modifiers);
    return settings;
}

std::optional<QString> SettingsCoding::decodeOldPassword(const QByteArray &data)
{
    try {
        const json root = parse(data);
        QString password;
        ObjectReader(root).read("password", password);
        return password;
    } catch (const DecodingError &) {
        return std::nullopt; // Today's records hold none.
    }
}
