// SPDX-License-Identifier: Apache-2.0
#include "platform/files/FileSystem.h"

#include <atomic>

namespace
{
std::atomic<FileSystem*> current = nullptr; // files are written in several threads
} // namespace

FileSystem& FileSystem::Current()
{
    FileSystem* fileSystem = current;
    return fileSystem ? *fileSystem : System();
}

void FileSystem::SetCurrent(FileSystem* fileSystem)
{
    current = fileSystem;
}
