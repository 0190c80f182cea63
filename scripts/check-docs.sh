#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Proves that the pages name what is there: links and their headings, pictures, files and folders of the tree, code that is told to be
# an excerpt of examples/, and with PROGRAM, which is tolva, its commands and options.
#   scripts/check-docs.sh [PROGRAM]
set -euo pipefail
program=${1:+$(realpath "$1")}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mapfile -t pages < <(git ls-files --cached --others --exclude-standard -- '*.md')
PROGRAM=$program perl - "${pages[@]}" <<'PERL'
use strict;
use warnings;

my $problems = 0;
my ($page, $line);
sub Problem { print STDERR "$page:$line: @_\n"; $problems++; }
sub Content { open(my $file, '<', $_[0]) or die "$_[0]: $!\n"; local $/; return scalar <$file>; }

# What a page's headings are called in links.
my %anchors;
sub Anchors {
    my ($file) = @_;
    $anchors{$file} //= do {
        my (%names, %times);
        my $text = Content($file) =~ s/^```.*?^```//gmsr;
        while ($text =~ /^#+ +(.*?) *$/gm) {
            my $name = lc($1) =~ s/[^\w\- ]//gr =~ tr/ /-/r;
            $names{ $times{$name}++ ? "$name-" . ($times{$name} - 1) : $name } = 1;
        }
        \%names;
    };
    return $anchors{$file};
}

my %linked;
sub CheckLink {
    my ($target) = @_;
    return if $target =~ /^[a-z]+:/;
    my ($path, $anchor) = $target =~ /^([^#]*)(?:#(.*))?$/;
    my $folder = $page =~ m{^(.*/)} ? $1 : '';
    my $file = $path eq '' ? $page : $folder . $path;
    1 while $file =~ s{(^|/)(?!\.\./)[^/]+/\.\./}{$1};
    $file =~ s{^\./}{};
    $linked{$file} = 1;
    return Problem("the link leads nowhere: $target") unless -e $file;
    Problem("there is no such heading: $target") if defined $anchor && $file =~ /\.md$/ && !Anchors($file)->{$anchor};
}

# Every file of the tree by its bare name.
my %names;
for my $path (split /\0/, `git ls-files -z --cached --others --exclude-standard`) {
    $names{ $path =~ s{.*/}{}r } = 1;
}
my $folders = join '|', map { s{/$}{}r } glob('*/');

sub CheckCode {
    my ($code) = @_;
    # Paths of the tree; what is built and what a user makes are not in it.
    while ($code =~ m{(?<![\w./~-])((?:\./)?(?:$folders)/[\w./*{},+-]*[\w*]|\./\w[\w/.-]*)}g) {
        my $path = $1;
        next if $path =~ m{^(\./)?(build|station)};
        my @found = grep { -e } glob($path);
        # A source's name without its ending stands for header and source.
        Problem("there is no $path") unless @found || -e "$path.h" || -e "$path.cpp";
    }
    while ($code =~ m{(?<![\w./*-])([A-Za-z]\w*\.(?:cpp|h|cmake|sh))(?![\w*])}g) {
        Problem("there is no file $1") unless $names{$1} || $1 =~ /^X\w*\./;
    }
}

# The pages on security and testing name cases of the tests.
my %cases;
for my $file (grep { /\.cpp$/ } split /\0/, `git ls-files -z --cached --others --exclude-standard tests`) {
    my $text = Content($file);
    $cases{"$1.$2"} = 1 while $text =~ /^TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)/mg;
}

# The program's commands with their options.
my $program = $ENV{PROGRAM};
my %options;
if ($program) {
    my ($list) = `"$program" --help` =~ /^Commands:\n(.*?)\n\n/ms or die "$program says nothing of its commands.\n";
    for my $command ($list =~ /^  (\S+)/gm) {
        $options{$command} = { map { $_ => 1 } `"$program" $command --help` =~ /(?:^  |also )(--?[a-z-]+)/gm };
    }
}
sub CheckCommand {
    my ($words) = @_;
    my ($command, $rest) = $words =~ m{(?:^|[\s/"|])tolva ([a-z]+) +(?=/srv|"\$|station|FOLDER)([^|;]*)} or return;
    return Problem("tolva has no command \"$command\"") unless $options{$command};
    $rest =~ s/'[^']*'|"[^"]*"//g;
    for my $option ($rest =~ /(?<=\s)(--?[a-z][a-z-]*)/g) {
        Problem("tolva $command does not take $option") unless $options{$command}{$option};
    }
}

# Excerpts: the block stands, line by line, in a file of examples/.
my $examples = '';
$examples .= Content($_) =~ s/^\s+//gmr . "\0" for grep { -f } glob('examples/*/*');
sub CheckExcerpt {
    my ($block) = @_;
    for my $part (split /^\s*(?:\/\/|#) \.\.\.\n/m, $block) {
        my $wanted = $part =~ s/^\s+//gmr;
        Problem("this is no excerpt of examples/") if index($examples, $wanted) < 0;
    }
}

for my $name (@ARGV) {
    $page = $name;
    my ($fence, $block, $start) = (undef, '', 0);
    $line = 0;
    for (split /^/, Content($page)) {
        $line++;
        if (/^```(\w*)/) {
            if (defined $fence) {
                my $end = $line;
                $line = $start;
                CheckExcerpt($block) if $page =~ /embedding\.md$/ && $fence =~ /^(cpp|cmake)$/;
                $line = $end;
            }
            ($fence, $block, $start) = defined $fence ? (undef, '', 0) : ($1, '', $line);
            next;
        }
        if (defined $fence) {
            $block .= $_;
            CheckCode($_) if $fence =~ /^(sh|)$/;
            CheckCommand($_) if $program && $fence =~ /^(sh|)$/ && !/^\s*#/;
            next;
        }
        (my $prose = $_) =~ s/`[^`]*`//g;
        CheckLink($1) while $prose =~ /\]\(([^)\s]+)\)/g;
        while (/`([^`]+)`/g) {
            my $code = $1;
            CheckCode($code);
            Problem("there is no test $code")
                if $page =~ m{/(security|testing)\.md$} && $code =~ /^[A-Za-z]\w*\.[A-Z]\w*$/ && !$cases{$code};
            CheckCommand($code) if $program && $code =~ /^tolva /;
        }
    }
}

# What no page shows or leads to is left over.
($page, $line) = ('docs', 0);
for my $file (glob('docs/pictures/* docs/*.md')) {
    Problem("no page leads to $file") unless $linked{$file};
}
exit($problems ? 1 : 0);
PERL
