#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The long forms of the tests that let several programs work on one station at once, or kill them at random moments: ten minutes of two
# desks and a mail server, three of filing beside compact and restore, 500 kills each, 20,000 crashes of a Jet file. Needs what ./test built.
#   scripts/nightly.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
export QT_QPA_PLATFORM=offscreen TOLVA_KILL_ROUNDS=500
TOLVA_SOAK_SECONDS=600 build/check/bin/deskTests --gtest_filter='SoakTest*'
TOLVA_SOAK_SECONDS=180 build/check/bin/appTests --gtest_filter='ExchangeUnderLoad*:KilledExchange*:ExchangeTest*:FilingBatchTest*:PrizeRaceTest*'
TOLVA_CRASH_STATES=20000 build/check/bin/platformTests --gtest_filter='JetCrash*:SeveralProcesses*'
