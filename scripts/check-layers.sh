#!/usr/bin/env bash
# Proves that no include goes against the arrows: platform <- core (common, database, messages, prizes) <- controls, and that
# platform and core know nothing of Gui or Widgets.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
failed=0
refuse() { # refuse WORDS PATTERN PATH...
    local words=$1 pattern=$2
    shift 2
    if grep -rnE "$pattern" --include='*.h' --include='*.cpp' "$@"; then
        echo "^ $words" >&2
        failed=1
    fi
}
refuse "platform must not include core" '#include "(common|database|messages|prizes|messageslist)/' src/platform
refuse "core must not include controls" '#include "(messageslist/|platform/widgets/|[a-z]+/(controls|dialogs)/)' \
    src/common src/database src/messages
refuse "platform and core must not include Gui or Widgets" \
    '#include <(QtGui|QtWidgets|QWidget|QApplication|QGuiApplication|QDialog|QMessageBox|QFont|QColor|QImage|QPixmap)' \
    src/common src/database src/messages src/platform/records src/platform/mail src/platform/directory
refuse "nothing outside an engine's folder includes it, but the registry" '#include "platform/records/engines/[a-z]+/' \
    $(find src -name '*.h' -o -name '*.cpp' | grep -v 'src/platform/records/engines/')
exit $failed
