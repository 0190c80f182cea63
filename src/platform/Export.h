// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtGlobal>

/// Marks what the shared library shows to its hosts; all else is hidden. TOLVA_BUILD is set while the library itself
/// is compiled.
#ifdef TOLVA_BUILD
#define TOLVA_EXPORT Q_DECL_EXPORT
#else
#define TOLVA_EXPORT Q_DECL_IMPORT
#endif
