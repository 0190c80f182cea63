// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/DBEngine.h"
#include "support/TestServer.h"

#include <QDir>
#include <QTemporaryDir>

#include <memory>
#include <string>

/// An empty database of one engine ("sqlite", "jet" or "server"), opened as often as a test has computers.
class EngineFile
{
public:
    explicit EngineFile(const std::string& engine)
    {
        if (engine == "server") {
            Schema_ = TestServer::Shared().NewSchema();
            dao::DBEngine::CreateLinkedDatabase(Name(), TestServer::Shared().Connect(Schema_.Name));
        } else {
            dao::DBEngine::CreateDatabase(Name(), QString(), QString::fromStdString(engine))->Close();
        }
    }
    QString Name() const { return Folder_.filePath(QStringLiteral("Test.mdb")); }
    std::unique_ptr<dao::Database> Open() const { return dao::DBEngine::OpenDatabase(Name()); }

    /// For INSTANTIATE_TEST_SUITE_P.
    static std::vector<std::string> Engines()
    {
        std::vector<std::string> engines{"sqlite", "jet"};
        if (TestServer::IsInstalled())
            engines.emplace_back("server");
        return engines;
    }

private:
    QTemporaryDir Folder_;
    TestServer::Schema Schema_;
};
