// SPDX-License-Identifier: Apache-2.0
#include "MachineTest.h"

#include "HookupPage.h"

#include <QFile>
#include <QFileInfo>

void MachineTest::MakeMachine(const QString& tree)
{
    QStringList trees;
    if (!tree.isEmpty()) {
        trees.append(QStringLiteral(TOLVA_MAIL_PROGRAMS "/") + tree);
        if (!QFileInfo::exists(trees.first()))
            GTEST_SKIP() << "its program is not here; scripts/unpack-mail-programs.sh brings it";
    }
    Machine_ = std::make_unique<Machine>(trees, QStringLiteral(TOLVA_BUILD));
    if (!Machine_->Problem().isEmpty())
        GTEST_SKIP() << Machine_->Problem().toStdString();
    ASSERT_NO_FATAL_FAILURE(MakeStation());
}

void MachineTest::MakeStation() const
{
    Must(QStringLiteral(R"(
cat >/usr/bin/tolva <<'END'
#!/bin/bash
if [ -e /run/kill-at ]; then
    exec 8<>/run/kill-at
    flock 8
    read -r at <&8
    echo $((at + 3)) >/run/kill-at
    exec 8>&-
    export LD_PRELOAD=%2 KILL_AT=$at ASAN_OPTIONS=verify_asan_link_order=0
fi
exec %1 "$@"
END
chmod 0755 /usr/bin/tolva
mkdir -p /srv
mount -t tmpfs -o size=400m,mode=0755 tmpfs /srv
command -v sudo >/dev/null || printf '#!/bin/bash\nexec runuser "${@:1:2}" -- "${@:3}"\n' >/usr/bin/sudo
chmod 0755 /usr/bin/sudo
cd /root
tolva init /srv/station --name "Harbour FM" --phone "01632 960100"
printf 'From: a@example.org\n\nTried by hand.\n' >some-mail.eml
)")
             .arg(QStringLiteral(TOLVA_PROGRAM), QStringLiteral(FAILING_CALLS)));
}

QString MachineTest::InstructionsOf(const QString& heading)
{
    QFile file(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString instructions = HookupPage(QString::fromUtf8(file.readAll())).Instructions(heading);
    EXPECT_FALSE(instructions.isEmpty()) << heading.toStdString();
    return instructions;
}
void MachineTest::Must(const QString& script) const
{
    const Machine::Outcome outcome = Computer().Run(QStringLiteral("set -e\n") + script);
    ASSERT_EQ(outcome.Code, 0) << script.toStdString() << '\n'
                               << outcome.Output.constData() << outcome.Problems.constData();
}
