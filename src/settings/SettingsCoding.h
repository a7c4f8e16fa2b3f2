#pragma once

#include "settings/UploadSettings.h"

#include <QByteArray>

#include <exception>
#include <optional>

/// The settings record as JSON. Decoding is strict: every key must be there, once, with a value of
/// its type.
namespace SettingsCoding {

/// Why a record does not decode; what() is UTF-8, one line.
class DecodingError : public std::exception {
public:
    explicit DecodingError(std::string description) : m_description(std::move(description)) { }
    const char *what() const noexcept override { return m_description.c_str(); }

private:
    std::string m_description;
};

/// The record as JSON, keys in the order of the fields.
QByteArray encode(const UploadSettings &settings);

/// The record in json. Throws DecodingError.
UploadSettings decode(const QByteArray &json);

/// The password that records of the older layout carried; absent when json has none.
std::optional<QString> decodeOldPassword(const QByteArray &json);

} // namespace SettingsCoding
