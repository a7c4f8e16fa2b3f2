#pragma once

#include <QByteArray>

#include <cstdint>

/// File systems that others may write to without this computer's kernel knowing, so that it cannot
/// tell of it.
namespace NetworkFileSystem {

/// Whether type, as statfs() gives it, is one of them. All of FUSE counts: what is behind it is not
/// to be known.
bool isOne(std::uint32_t type);

/// Whether path is on one of them.
bool holds(const QByteArray &path);

} // namespace NetworkFileSystem
