// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Names of options that several commands take. What one does, the help of its command says.
inline const QString CategoryOption = QStringLiteral("category");
inline const QString ConnectOption = QStringLiteral("connect");
inline const QString FindOption = QStringLiteral("find");
inline const QString ForceOption = QStringLiteral("force");
inline const QString FromOption = QStringLiteral("from");
inline const QString JsonOption = QStringLiteral("json");
inline const QString LimitOption = QStringLiteral("limit");
inline const QString OutputOption = QStringLiteral("output");
inline const QString ToOption = QStringLiteral("to");
inline const QString TypeOption = QStringLiteral("type");
