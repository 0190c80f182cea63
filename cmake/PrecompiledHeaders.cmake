# SPDX-License-Identifier: Apache-2.0
# What nearly every source includes of the standard library and of Qt, read once for all targets instead of once a source: more than half of
# the time of a build. Only headers that change with the system stand here, so that a change to one of ours builds what includes it
# and nothing else. A source includes what it uses all the same; the presets tidy and coverage build without and prove it.
option(TOLVA_PRECOMPILE "Read the common headers once a target" ON)

set(precompiledOfCore
    <algorithm> <array> <cmath> <functional> <limits> <map> <memory> <optional> <string> <utility> <vector>
    <QByteArray> <QCoreApplication> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QJsonArray> <QJsonDocument> <QJsonObject> <QList>
    <QLocale> <QObject> <QPointer> <QRegularExpression> <QScopeGuard> <QSet> <QString> <QStringList> <QStringView> <QTimer> <QVariant>)
set(precompiledOfWidgets
    <QAction> <QApplication> <QCheckBox> <QComboBox> <QDialog> <QDialogButtonBox> <QEvent> <QFormLayout> <QGridLayout> <QHeaderView>
    <QIcon> <QKeyEvent> <QLabel> <QLineEdit> <QListWidget> <QMainWindow> <QMenu> <QMenuBar> <QMessageBox> <QMimeData> <QPainter>
    <QPlainTextEdit> <QPushButton> <QScrollBar> <QSpinBox> <QStatusBar> <QTabWidget> <QToolBar> <QTreeWidget> <QUrl> <QVBoxLayout>
    <QWidget>)
# GoogleTest takes the first way of printing a type that it meets, so ours comes first.
set(precompiledOfTests <support/Print.h> <gtest/gtest.h> <QProcess> <QTemporaryDir>)
set(precompiledOfWidgetTests <QSignalSpy> <QTest>)

# What each group's headers need.
set(librariesOfCore Qt6::Core)
set(librariesOfWidgets Qt6::Widgets)
set(librariesOfTests testSupport)
set(librariesOfWidgetTests Qt6::Test)

# tolva_precompile(TARGET GROUP...): groups are Core, Widgets, Tests, WidgetTests. Targets of the same groups share one reading, which a
# library of an empty source stands for.
function(tolva_precompile target)
    if(NOT TOLVA_PRECOMPILE)
        return()
    endif()
    list(JOIN ARGN "" groups)
    set(holder "precompiled${groups}")
    if(NOT TARGET ${holder})
        set(source "${PROJECT_BINARY_DIR}/precompiled/${holder}.cpp")
        file(CONFIGURE OUTPUT "${source}" CONTENT "// Nothing but the precompiled headers.\n")
        add_library(${holder} OBJECT "${source}")
        set_target_properties(${holder} PROPERTIES AUTOMOC OFF UNITY_BUILD OFF)
        foreach(group IN LISTS ARGN)
            target_link_libraries(${holder} PRIVATE ${librariesOf${group}})
            target_precompile_headers(${holder} PRIVATE ${precompiledOf${group}})
        endforeach()
    endif()
    target_precompile_headers(${target} REUSE_FROM ${holder})
endfunction()
