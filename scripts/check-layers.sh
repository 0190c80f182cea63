#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that no include goes against the arrows: platform <- core (common, database, messages, prizes, contacts, sending) <- controls, and that
# platform and core know nothing of Gui or Widgets.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
failed=0
refuse() { # refuse WORDS PATTERN PATH...
    local words=$1 pattern=$2
    shift 2
    if grep -nE "$pattern" "$@"; then
        echo "^ $words" >&2
        failed=1
    fi
}
sourcesIn() { find "$@" -name '*.h' -o -name '*.cpp'; }
mapfile -t platform < <(sourcesIn src/platform/{files,records,mail,directory,html})
# A folder's controls/ and dialogs/ belong to the upper layer.
mapfile -t core < <(sourcesIn src/common src/database src/messages src/prizes src/contacts src/sending | grep -vE '/(controls|dialogs)/')
mapfile -t widgets < <(sourcesIn src/platform/widgets)
mapfile -t outsideEngines < <(sourcesIn src | grep -v '^src/platform/records/engines/')
refuse "platform must not include core" '#include "(common|database|messages|prizes|contacts|sending|messageslist)/' "${platform[@]}"
mapfile -t files < <(sourcesIn src/platform/files)
refuse "the files stand on nothing else of the platform" '#include "platform/(records|mail|directory|html|widgets)/' "${files[@]}"
refuse "platform must not include the widgets" '#include "platform/widgets/' "${platform[@]}"
refuse "widgets must not include what stands on them" '#include "([a-z]+/(controls|dialogs)|messageslist|database|messages|prizes|contacts|sending)/' \
    "${widgets[@]}"
refuse "core must not include controls" '#include "(messageslist/|platform/widgets/|[a-z]+/(controls|dialogs)/)' \
    "${core[@]}"
refuse "platform and core must not include Gui or Widgets" \
    '#include <(QtGui|QtWidgets|QWidget|QApplication|QGuiApplication|QDialog|QMessageBox|QFont|QColor|QImage|QPixmap)' \
    "${core[@]}" "${platform[@]}"
refuse "nothing outside an engine's folder includes it, but the registry" '#include "platform/records/engines/[a-z]+/' \
    "${outsideEngines[@]}"
for engine in jet postgres sqlite; do
    mapfile -t sources < <(sourcesIn "src/platform/records/engines/$engine")
    others=$(echo jet postgres sqlite | tr ' ' '\n' | grep -v "$engine" | paste -sd '|')
    refuse "an engine must not include another one" "#include \"platform/records/engines/($others)/" "${sources[@]}"
done
exit $failed
