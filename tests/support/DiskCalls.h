#pragma once

#include <QByteArrayList>

/// Notes by which calls the test program, and the toolkit in it, gives files their names and has
/// them written to the disk: a program that is linked with this finds these functions of the C
/// library here first.
class DiskCalls {
public:
    /// Begins to note. error: what syncing a file fails with; 0 lets it be done.
    explicit DiskCalls(int error = 0);
    ~DiskCalls();
    DiskCalls(const DiskCalls &) = delete;
    DiskCalls &operator=(const DiskCalls &) = delete;

    /// In their order, without the folders they are in: "NAME: synced" and "NAME: not synced" where
    /// a file got that name, and whether it had been synced as it was then; "FOLDER/: synced".
    QByteArrayList all() const;
};
