#!/usr/bin/env bash
# Installs the build tree into a scratch prefix as `cmake --install` would for a user, then checks
# what a desktop and a shell find there: the desktop entry and AppStream metadata validate, the
# manual page renders without warnings, and the completions offer only names the installed
# program accepts, and all of them.
# Usage: install_check.sh SOURCE_DIR BUILD_DIR VERSION WORK_DIR
set -euo pipefail
source_dir=$1 build_dir=$2 version=$3 work=$4
rm -rf "$work" && mkdir -p "$work"
prefix="$work/prefix"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

for f in bin/horalo share/applications/org.horalo.Horalo.desktop \
  share/metainfo/org.horalo.Horalo.metainfo.xml share/icons/hicolor/scalable/apps/horalo.svg \
  share/icons/hicolor/48x48/apps/horalo.png share/man/man1/horalo.1.gz \
  share/bash-completion/completions/horalo \
  share/fish/vendor_completions.d/horalo.fish share/dbus-1/interfaces/org.horalo.Horalo.xml; do
  [[ -e $prefix/$f ]] || fail "not installed: $f"
done
zsh_file=$(compgen -G "$prefix/share/zsh/*/_horalo" | head -1) || fail "not installed: the zsh completion"
[[ -e $prefix/share/applications/horalo.desktop ]] && fail "the old desktop file is still installed"

# --- desktop metadata ---
desktop-file-validate "$prefix/share/applications/org.horalo.Horalo.desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net --pedantic "$prefix/share/metainfo/org.horalo.Horalo.metainfo.xml" \
  >"$work/appstream.txt" 2>&1 || { cat "$work/appstream.txt"; fail "appstreamcli validate"; }
# The newest release named in the metadata is the version being built.
newest=$(grep -o '<release version="[^"]*"' "$prefix/share/metainfo/org.horalo.Horalo.metainfo.xml" |
  head -1 | cut -d'"' -f2)
[[ $newest == "$version" ]] || fail "newest metainfo release is '$newest', the build is $version"

changelog=$(zcat "$prefix/share/doc/horalo/changelog.gz" | head -1)
[[ $changelog == "horalo ($version) "* ]] || fail "the changelog starts '$changelog', the build is $version"
[[ -s $prefix/share/doc/horalo/copyright ]] || fail "no copyright file"

# --- manual page ---
zcat "$prefix/share/man/man1/horalo.1.gz" >"$work/horalo.1"
warnings=$(LC_ALL=C.UTF-8 groff -man -ww -z "$work/horalo.1" 2>&1)
[[ -z $warnings ]] || fail "groff warnings: $warnings"
LC_ALL=C.UTF-8 MANWIDTH=80 man -l "$work/horalo.1" >"$work/man.txt" 2>"$work/man.err" || fail "man -l"
[[ -s $work/man.err ]] && fail "man: $(cat "$work/man.err")"
grep -q "^NAME" "$work/man.txt" && grep -q "^EXIT STATUS" "$work/man.txt" || fail "man page sections"
# The settings keys, as the program's own key table names them.
mapfile -t keys < <(sed -n '/^namespace SettingsKey {/,/^}/p' "$source_dir/src/app/settings/Settings.h" |
  grep -o 'QStringLiteral("[^"]*")' | cut -d'"' -f2 | sort)
((${#keys[@]} >= 11)) || fail "only ${#keys[@]} keys found in Settings.h"

# --- what the program itself says its names are ---
horalo=$prefix/bin/horalo
# The commands, as `horalo --help` lists them, and each command's long options, as its own
# `--help` lists them: the manual page and every completion must know all of them.
mapfile -t commands < <("$horalo" --help | sed -n '/^Commands:/,/^$/p' | awk 'NF { print $1 }' |
  grep -v '^Commands:' | sort)
((${#commands[@]} >= 7)) || fail "only ${#commands[@]} commands in 'horalo --help'"
declare -A options
for command in "${commands[@]}"; do
  options[$command]=$("$horalo" "$command" --help | sed -n '/^Options:/,/^$/p' |
    { grep -o -- '--[a-z][a-z-]*' || true; } | sort -u | tr '\n' ' ')
done
[[ ${options[title]} == *--follow* ]] || fail "title --help lists no --follow: ${options[title]}"
# Every command, option and settings key is described.
mapfile -t all_options < <(printf '%s\n' ${options[*]} | sort -u)
for word in "${commands[@]}" "${all_options[@]}" --version "${keys[@]}"; do
  grep -qF -- "$word" "$work/man.txt" || fail "the manual page does not mention $word"
done
export XDG_CONFIG_HOME=$work/config DBUS_SESSION_BUS_ADDRESS=disabled: QT_QPA_PLATFORM=offscreen
"$horalo" defaults write UseSymbolicNames -bool yes >/dev/null
"$horalo" defaults write IncludeDateOnlyItems -bool yes >/dev/null
"$horalo" defaults write IncludeTimeOnlyItems -bool yes >/dev/null
# With names shown, the menu's entries (title, tab, action) are titled with the menu names;
# the ones `copy` accepts are the format entries.
mapfile -t menu_names < <("$horalo" menu --now @0 | awk -F'\t' 'NF >= 2 { print $1 }' |
  while IFS= read -r name; do "$horalo" copy --now @0 "$name" >/dev/null 2>&1 && echo "$name"; done |
  sort -u)
((${#menu_names[@]} >= 16)) || fail "only ${#menu_names[@]} menu names found in 'horalo menu'"
rm -rf "$XDG_CONFIG_HOME"

# --- bash ---
bash_offers() { # words...: what completing the last word offers, one a line
  bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _horalo
           printf "%s\n" "${COMPREPLY[@]}"' _ "$prefix/share/bash-completion/completions/horalo" "$@"
}
[[ "$(bash_offers horalo "" | grep -v '^-' | sort | tr '\n' ' ')" == "${commands[*]} " ]] ||
  fail "bash: commands: $(bash_offers horalo "" | tr '\n' ' '), the program has ${commands[*]}"
for command in "${commands[@]}"; do
  for option in ${options[$command]}; do
    grep -qx -- "$option" < <(bash_offers horalo "$command" --) || fail "bash: $command lacks $option"
  done
done
mapfile -t offered_copy < <(bash_offers horalo copy "" | sort -u)
[[ "${offered_copy[*]}" == "${menu_names[*]}" ]] ||
  fail "bash: copy offers [${offered_copy[*]}], the menu has [${menu_names[*]}]"
while IFS= read -r name; do
  "$horalo" render --now @0 "$name" >/dev/null 2>&1 || fail "bash offers '$name', which render refuses"
done < <(bash_offers horalo render "")
[[ "$(bash_offers horalo render "Numerical Date N")" == "Numerical Date No Hyphens" ]] ||
  fail "bash: a prefix with spaces"
mapfile -t bash_keys < <(bash_offers horalo defaults write "" | sort)
[[ "${bash_keys[*]}" == "${keys[*]}" ]] || fail "bash offers the keys [${bash_keys[*]}], not [${keys[*]}]"
grep -qx "Custom Dates" < <(bash_offers horalo defaults read "Cus") || fail "bash: key with a space"
[[ "$(bash_offers horalo defaults write IncludeTitleIcon -bool n | tr '\n' ' ')" == "no " ]] ||
  fail "bash: boolean values"

# --- fish ---
if command -v fish >/dev/null; then
  fish_offers() { fish --no-config -c "source '$prefix/share/fish/vendor_completions.d/horalo.fish'; complete -C '$1'" | cut -f1; }
  mapfile -t fish_copy < <(fish_offers "horalo copy " | sort -u)
  [[ "${fish_copy[*]}" == "${menu_names[*]}" ]] || fail "fish: copy offers [${fish_copy[*]}]"
  mapfile -t fish_keys < <(fish_offers "horalo defaults delete " | sort)
  [[ "${fish_keys[*]}" == "${keys[*]}" ]] || fail "fish offers the keys [${fish_keys[*]}]"
  for command in "${commands[@]}"; do
    fish_offers "horalo " | grep -qx -- "$command" || fail "fish: no command $command"
    for option in ${options[$command]}; do
      fish_offers "horalo $command --" | grep -qx -- "$option" || fail "fish: $command lacks $option"
    done
  done
else
  fail "fish is not installed (scripts/install-deps.sh --with-test-tools installs it)"
fi

# --- zsh ---
if command -v zsh >/dev/null; then
  zsh -n "$zsh_file" || fail "zsh: syntax"
  # zsh's list is checked by hand (its completion needs a terminal); here: it names every
  # menu name and key the program has.
  for name in "${menu_names[@]}" "${keys[@]}"; do
    grep -qF "'$name'" "$zsh_file" || fail "zsh lacks '$name'"
  done
  for word in "${commands[@]}" "${all_options[@]}"; do
    grep -qF -- "$word" "$zsh_file" || fail "zsh lacks $word"
  done
else
  fail "zsh is not installed (scripts/install-deps.sh --with-test-tools installs it)"
fi

((failures == 0)) || { echo "$failures failure(s)" >&2; exit 1; }
echo "install check passed: ${#menu_names[@]} menu names, all offered by bash, fish and zsh"
