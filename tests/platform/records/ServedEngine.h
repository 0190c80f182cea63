// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/TestedEngines.h"
#include "platform/records/engines/Engine.h"

/// An engine for tests that serves connect strings ("SERVED;FOLDER") and knows no query language: it keeps its rows by
/// another engine, and has its queries run by what the record store gives to such engines.
QString ServedEngineName();
std::unique_ptr<dao::engine::Engine> MakeServedEngine();
DatabasePlace MakeServedDatabase(const QString& folder);
