// Makes a temporary folder and tells where.

#include "base/TemporaryFolder.h"

#include <cstdio>

int main()
{
    const TemporaryFolder folder;
    std::puts(qPrintable(folder.path()));
    return 0;
}
