#include "settings/SettingsCoding.h"

#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QObject>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// The default record as it is stored.
const QByteArray kDefaults =
    R"({"serverType":"SFTP","hostname":"","port":22,"username":"","remotePath":"/",)"
    R"("publicURLBase":"","usePassiveMode":true,"allowInsecureCertificates":true,)"
    R"("tlsVersion":"TLS 1.2","filenameStyle":"Keep Original Name","addDateToFilename":false,)"
    R"("randomFilenameConfig":{"length":8,"useLowercase":true,"useUppercase":false,)"
    R"("useNumbers":true,"useSymbols":false,"customSymbols":"-_"},)"
    R"("uploadClipboardShortcut":{"key":"u","modifiers":["⌘","⇧"]}})";

/// Every key of the record, of its nested records with the name of these before a dot.
const QStringList kPaths{u"serverType"_s,
                         u"hostname"_s,
                         u"port"_s,
                         u"username"_s,
                         u"remotePath"_s,
                         u"publicURLBase"_s,
                         u"usePassiveMode"_s,
                         u"allowInsecureCertificates"_s,
                         u"tlsVersion"_s,
                         u"filenameStyle"_s,
                         u"addDateToFilename"_s,
                         u"randomFilenameConfig"_s,
                         u"uploadClipboardShortcut"_s,
                         u"randomFilenameConfig.length"_s,
                         u"randomFilenameConfig.useLowercase"_s,
                         u"randomFilenameConfig.useUppercase"_s,
                         u"randomFilenameConfig.useNumbers"_s,
                         u"randomFilenameConfig.useSymbols"_s,
                         u"randomFilenameConfig.customSymbols"_s,
                         u"uploadClipboardShortcut.key"_s,
                         u"uploadClipboardShortcut.modifiers"_s};

/// The default record with the value at path replaced, or removed if value is undefined.
QByteArray changed(const QString &path, const QJsonValue &value)
{
    QJsonObject record = QJsonDocument::fromJson(kDefaults).object();
    const QStringList keys = path.split(u'.');
    const auto put = [](QJsonObject &object, const QString &key, const QJsonValue &newValue) {
        if (newValue.isUndefined())
            object.remove(key);
        else
            object[key] = newValue;
    };
    if (keys.size() == 1) {
        put(record, path, value);
    } else {
        QJsonObject nested = record[keys[0]].toObject();
        put(nested, keys[1], value);
        record[keys[0]] = nested;
    }
    return QJsonDocument(record).toJson(QJsonDocument::Compact);
}

QJsonValue defaultAt(const QString &path)
{
    QJsonValue value = QJsonDocument::fromJson(kDefaults).object();
    for (const QString &key : path.split(u'.'))
        value = value.toObject()[key];
    return value;
}

QByteArray withPort(const QByteArray &literal)
{
    return QByteArray(kDefaults).replace("\"port\":22", QByteArray("\"port\":" + literal));
}

/// Why json does not decode; empty if it does.
QString failure(const QByteArray &json)
{
    try {
        [[maybe_unused]] const UploadSettings settings = SettingsCoding::decode(json);
        return {};
    } catch (const SettingsCoding::DecodingError &error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace

class SettingsCodingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { TestSurroundings::failOnWarnings(); }

    void defaultsEncodeInTheOrderOfTheFields()
    {
        QCOMPARE(SettingsCoding::encode(UploadSettings()), kDefaults);
    }

    void defaultsDecodeToAnEqualRecord()
    {
        QCOMPARE(SettingsCoding::decode(kDefaults), UploadSettings());
    }

    void recordWithoutAnyDefaultDecodesToAnEqualRecord()
    {
        using Modifier = UploadSettings::KeyboardShortcut::KeyModifier;
        const UploadSettings settings{
            UploadSettings::ServerType::ftps,
            u"höst\n\"\\\u0001"_s,
            std::numeric_limits<std::int64_t>::min(),
            u"🙂"_s,
            QString(),
            u"https://x.org/"_s,
            false,
            false,
            UploadSettings::TLSVersion::automatic,
            UploadSettings::FilenameStyle::timestamp,
            true,
            {std::numeric_limits<std::int64_t>::max(), false, true, false, true, u"é/ "_s},
            {u"ß"_s, {Modifier::control, Modifier::control, Modifier::option}}};
        QCOMPARE(SettingsCoding::decode(SettingsCoding::encode(settings)), settings);
    }

    void missingKeyFailsTheWhole_data()
    {
        QTest::addColumn<QString>("path");
        for (const QString &path : kPaths)
            QTest::newRow(qPrintable(path)) << path;
    }

    void missingKeyFailsTheWhole()
    {
        QFETCH(const QString, path);
        QCOMPARE(failure(changed(path, QJsonValue(QJsonValue::Undefined))),
                 path + u" is missing"_s);
    }

    void valueOfAnotherTypeFailsTheWhole_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("path");
        const QList<std::pair<const char *, QJsonValue>> values{
            {"null", QJsonValue()},   {"boolean", true}, {"number", 1},
            {"fraction", 22.5},       {"text", u"22"_s}, {"list", QJsonArray()},
            {"object", QJsonObject()}};
        for (const QString &path : kPaths) {
            for (const auto &[name, value] : values) {
                // An empty list of modifiers is one; and a text fits where any text does.
                const QJsonValue good = defaultAt(path);
                const bool fits = value.type() == good.type() && value != QJsonValue(22.5);
                const bool isEnumeration =
                    path.endsWith(u"Type") || path.endsWith(u"Version") || path.endsWith(u"Style");
                if ((!fits || isEnumeration) && !(value.isObject() && good.isObject()))
                    QTest::addRow("%s: %s", qPrintable(path), name) << changed(path, value) << path;
            }
        }
    }

    void valueOfAnotherTypeFailsTheWhole()
    {
        QFETCH(const QByteArray, json);
        QFETCH(const QString, path);
        const QString error = failure(json);
        QVERIFY2(error.startsWith(path + u" is not "), qPrintable(error));
    }

    void onlyWholeNumbersOf64BitsCount_data()
    {
        QTest::addColumn<QByteArray>("literal");
        QTest::addColumn<bool>("counts");
        for (const char *good : {"0", "-1", "65536", "9223372036854775807", "-9223372036854775808"})
            QTest::newRow(good) << QByteArray(good) << true;
        for (const char *bad : {"22.5", "22.0", "2.2e1", "1e300", "1e400", "9223372036854775808",
                                "18446744073709551616", "-9223372036854775809", "\"22\"", "true",
                                "022", "0x16", "+22", "NaN", "Infinity", "22,", ""})
            QTest::newRow(bad) << QByteArray(bad) << false;
    }

    void onlyWholeNumbersOf64BitsCount()
    {
        QFETCH(const QByteArray, literal);
        QTEST(failure(withPort(literal)).isEmpty(), "counts");
    }

    void onlyTheExactTextsOfAnEnumerationCount_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("lower case") << u"serverType"_s << QJsonValue(u"ftp"_s);
        QTest::newRow("short") << u"serverType"_s << QJsonValue(u"FTPS"_s);
        QTest::newRow("case name") << u"tlsVersion"_s << QJsonValue(u"v1_2"_s);
        QTest::newRow("blank after") << u"tlsVersion"_s << QJsonValue(u"TLS 1.2 "_s);
        QTest::newRow("style") << u"filenameStyle"_s << QJsonValue(u"random"_s);
    }

    void onlyTheExactTextsOfAnEnumerationCount()
    {
        QFETCH(const QString, path);
        QFETCH(const QJsonValue, value);
        QCOMPARE(failure(changed(path, value)), path + u" is not one of the known texts"_s);
    }

    void everyModifierMustBeKnown_data()
    {
        QTest::addColumn<QJsonArray>("modifiers");
        QTest::newRow("unknown") << QJsonArray{u"⌘"_s, u"⇪"_s};
        QTest::newRow("two in one") << QJsonArray{u"⌘⇧"_s};
        QTest::newRow("number") << QJsonArray{1};
        QTest::newRow("nested") << QJsonArray{QJsonArray{u"⌘"_s}};
    }

    void everyModifierMustBeKnown()
    {
        QFETCH(const QJsonArray, modifiers);
        QCOMPARE(
            failure(changed(u"uploadClipboardShortcut.modifiers"_s, modifiers)),
            u"an element of uploadClipboardShortcut.modifiers is not one of the known texts"_s);
    }

    void keysThatNobodyAskedForAreIgnored()
    {
        QCOMPARE(failure(changed(u"password"_s, u"old"_s)), QString());
        QCOMPARE(failure(changed(u"future"_s, QJsonArray{1, QJsonObject()})), QString());
        QCOMPARE(failure(changed(u"randomFilenameConfig.future"_s, 1)), QString());
    }

    void duplicateKeyFailsTheWhole_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("error");
        const auto twice = [](const char *member) {
            const QByteArray pair = QByteArray(member) + ',' + member;
            return QByteArray(kDefaults).replace(member, pair);
        };
        QTest::newRow("port") << twice("\"port\":22") << u"port is there twice"_s;
        QTest::newRow("nested") << twice("\"length\":8") << u"length is there twice"_s;
        QTest::newRow("escaped") << QByteArray(kDefaults).replace("\"port\":22",
                                                                  R"("port":22,"\u0070ort":23)")
                                 << u"port is there twice"_s;
        QTest::newRow("unknown") << QByteArray(R"({"a b":1,"a b":1})") << u"a key is there twice"_s;
        QTest::newRow("in what is ignored")
            << QByteArray(R"({"x":[{"y":{"z":1,"z":2}}]})") << u"z is there twice"_s;
        const QByteArray longMember = '"' + QByteArray(1000, 'k') + "\":1";
        QTest::newRow("long") << QByteArray('{' + longMember + ',' + longMember + '}')
                              << u"a key is there twice"_s;
    }

    void duplicateKeyFailsTheWhole()
    {
        QFETCH(const QByteArray, json);
        QTEST(failure(json), "error");
    }

    void sameKeyInSeparateObjectsIsNoDuplicate()
    {
        QCOMPARE(failure(changed(
                     u"x"_s, QJsonArray{QJsonObject{{u"port"_s, 1}}, QJsonObject{{u"port"_s, 2}}})),
                 QString());
    }

    void garbageFailsQuickly_data()
    {
        QTest::addColumn<QByteArray>("json");
        const qsizetype large = 1'000'000; // The bound is a little above.
        QByteArray keys("{");
        for (int i = 0; keys.size() < large; ++i)
            keys += '"' + QByteArray::number(i) + "\":{},";
        keys.back() = '}';
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("blank") << QByteArray(" \n");
        QTest::newRow("half") << kDefaults.left(100);
        QTest::newRow("more after it") << kDefaults + "{}";
        QTest::newRow("a NUL after it") << kDefaults + QByteArray(1, '\0') + "x";
        QTest::newRow("trailing comma") << kDefaults.chopped(1) + ",}";
        QTest::newRow("comment") << "/**/" + kDefaults;
        QTest::newRow("a list") << QByteArray("[]");
        QTest::newRow("null") << QByteArray("null");
        QTest::newRow("a text") << QByteArray("\"SFTP\"");
        QTest::newRow("invalid UTF-8") << QByteArray(kDefaults).replace("SFTP", "SF\xff\xfeTP");
        QTest::newRow("invalid UTF-8, ignored") << kDefaults.chopped(1) + ",\"x\":\"\xc3\"}";
        QTest::newRow("invalid UTF-8 in a key") << kDefaults.chopped(1) + ",\"\xff\":1}";
        QTest::newRow("half a surrogate pair") << QByteArray(kDefaults).replace("SFTP", "\\ud800");
        QTest::newRow("line break in a text") << QByteArray(kDefaults).replace("SFTP", "SF\nTP");
        QTest::newRow("513 deep") << kDefaults.chopped(1) + ",\"x\":" + QByteArray(512, '[')
                + QByteArray(512, ']') + '}';
        QTest::newRow("1 MB of brackets") << QByteArray(large, '[');
        QTest::newRow("1 MB of braces") << QByteArray("{\"\":").repeated(large / 4);
        QTest::newRow("1 MB of objects")
            << QByteArray("{\"\":[" + QByteArray("{},").repeated(large / 3) + "{}]}");
        QTest::newRow("1 MB of keys") << keys;
        QTest::newRow("1 MB of letters") << QByteArray(large, 'x');
        QTest::newRow("1 MB of text") << '"' + QByteArray(large, 'x') + '"';
        QTest::newRow("1 MB of digits") << withPort(QByteArray(large, '9'));
        QTest::newRow("1 MB of NUL") << QByteArray(large, '\0');
        QTest::newRow("10 MB after it") << kDefaults + QByteArray(10 * large, ' ');
        QTest::newRow("10 MB of garbage") << QByteArray(10 * large, '\xa5');
    }

    void garbageFailsQuickly()
    {
        QFETCH(const QByteArray, json);
        const QString error = failure(json);
        QVERIFY(!error.isEmpty());
        QVERIFY2(error.size() < 100 && !error.contains(u'\n'), qPrintable(error));
    }

    void nestingOf512IsStillRead()
    {
        QCOMPARE(failure(kDefaults.chopped(1) + ",\"x\":" + QByteArray(511, '[')
                         + QByteArray(511, ']') + '}'),
                 QString());
    }

    void errorsNeverQuoteThePassword_data()
    {
        QTest::addColumn<QByteArray>("json");
        const QByteArray old = kDefaults.chopped(1) + ",\"password\":\"hunter2";
        QTest::newRow("cut off") << old;
        QTest::newRow("invalid UTF-8") << old + "\xff\"}";
        QTest::newRow("line break") << old + "\n\"}";
        QTest::newRow("twice") << old + "\",\"password\":\"hunter2\"}";
        QTest::newRow("in the place of a text") << QByteArray(kDefaults).replace("SFTP", "hunter2");
        QTest::newRow("bare") << kDefaults.chopped(1) + ",\"password\":hunter2}";
        QTest::newRow("in the place of a key") << kDefaults.chopped(1) + ",\"hunter2\"\"}";
    }

    void errorsNeverQuoteThePassword()
    {
        QFETCH(const QByteArray, json);
        const QString error = failure(json);
        QVERIFY(!error.isEmpty());
        QVERIFY2(!error.contains(u"hunter2"), qPrintable(error));
    }

    void oldPasswordIsFound()
    {
        QCOMPARE(SettingsCoding::decodeOldPassword(changed(u"password"_s, u"sécret"_s)),
                 std::optional(u"sécret"_s));
        QCOMPARE(SettingsCoding::decodeOldPassword(changed(u"password"_s, QString())),
                 std::optional(QString()));
    }

    void anythingButATextIsNoOldPassword()
    {
        QCOMPARE(SettingsCoding::decodeOldPassword(kDefaults), std::nullopt);
        QCOMPARE(SettingsCoding::decodeOldPassword(changed(u"password"_s, 1)), std::nullopt);
        QCOMPARE(SettingsCoding::decodeOldPassword(changed(u"password"_s, QJsonValue())),
                 std::nullopt);
        QCOMPARE(SettingsCoding::decodeOldPassword("garbage"), std::nullopt);
    }
};

TESSERY_TEST_MAIN(QCoreApplication, SettingsCodingTest)

#include "SettingsCodingTest.moc"
