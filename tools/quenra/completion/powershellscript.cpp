#include "tools/quenra/completion/powershellscript.h"

#include "tools/quenra/grammar/verbtable.h"
#include "tools/quenra/grammar/wordsets.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kHead =
    R"ps(# Completes the command lines of quenra in PowerShell; printed by `quenra completion powershell`.
#
#   quenra completion powershell | Out-String | Invoke-Expression
#
# for one session; in the file that $PROFILE names for all.

Register-ArgumentCompleter -Native -CommandName @('quenra', 'quenra.exe') -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)

)ps";

constexpr std::string_view kBody = R"ps(
    $verb = ''
    $ended = $false
    $given = 0
    $valueIsNext = $false
    $used = @()
    foreach ($element in @($commandAst.CommandElements | Select-Object -Skip 1)) {
        if ($element.Extent.EndOffset -ge $cursorPosition) {
            break
        }
        $text = $element.Extent.Text
        if ($valueIsNext) {
            $valueIsNext = $false
        } elseif (-not $ended -and $text -eq '--') {
            $ended = $true
        } elseif (-not $ended -and $text.StartsWith('-')) {
            $option = @($grammar[$verb].Options | Where-Object { $_.Name -eq $text })
            $used += $option
            $valueIsNext = $option.Count -gt 0 -and $option[0].TakesValue
        } elseif ($verb -eq '' -or $grammar[$verb].IsGroup) {
            $verb = "$verb $text".TrimStart()
            if (-not $grammar.ContainsKey($verb)) {
                return
            }
        } else {
            $given += 1
        }
    }
    if ($valueIsNext) {
        return
    }

    $positionals = $grammar[$verb].Positionals
    if ((-not $ended -and "$wordToComplete".StartsWith('-')) -or $given -ge $positionals.Count) {
        # Neither what was given is offered again, nor what it excludes.
        $names = @($used | ForEach-Object { $_.Name })
        $choices = @($used | ForEach-Object { $_.Choice } | Where-Object { $_ -ne '' })
        $offered = @($grammar[$verb].Options |
            Where-Object { $names -notcontains $_.Name -and $choices -notcontains $_.Choice })
    } elseif ($positionals[$given] -ne '') {
        $offered = $words[$positionals[$given]]
    } else {
        return
    }
    $offered |
        Where-Object { $_.Name.StartsWith("$wordToComplete", [StringComparison]::OrdinalIgnoreCase) } |
        ForEach-Object {
            [System.Management.Automation.CompletionResult]::new(
                $_.Name, $_.Name, 'ParameterValue', $_.Meaning)
        }
}
)ps";

// Between single quotes nothing but the single quote means anything.
std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char character : text) {
    result.append(character == '\'' ? 2 : 1, character);
  }
  return result + "'";
}

std::string wordLists() {
  std::string text = "    $words = @{\n";
  for (const tWordSet* const set : kWordSets) {
    text += "        " + quoted(set->name) + " = @(\n";
    for (const tOfferedWord& offered : set->words()) {
      text += "            @{ Name = " + quoted(offered.word) +
              "; Meaning = " + quoted(offered.meaning) + " }\n";
    }
    text += "        )\n";
  }
  return text + "    }\n";
}

std::string optionLines(std::span<const tOptionRow> options) {
  std::string text;
  for (const tOptionRow& row : options) {
    text += "                @{ Name = " + quoted(row.name) +
            "; Meaning = " + quoted(row.description) +
            "; TakesValue = " + (row.valueName.empty() ? "$false" : "$true") +
            "; Choice = " + quoted(row.choice) + " }\n";
  }
  return text;
}

std::string entry(std::string_view verb, const std::string& options, const std::string& positionals,
                  bool isGroup = false) {
  return "        " + quoted(verb) + " = @{\n            Options = @(\n" + options +
         "            )\n            Positionals = @(" + positionals +
         ")\n            IsGroup = " + (isGroup ? "$true" : "$false") + "\n        }\n";
}

std::string positionalSets(const tVerbRow& verb) {
  std::string text;
  for (const tPositionalRow& row : verb.positionals) {
    text += (text.empty() ? "" : ", ") + quoted(row.words == nullptr ? "" : row.words->name);
  }
  return text;
}

// What may stand behind a verb, and under the empty name in front of it.
std::string grammar() {
  std::string text = "    $grammar = @{\n";
  text += entry("", optionLines(kOptionsOfTheProgram), quoted(kVerbWords.name));
  for (const tVerbGroupRow& group : kVerbGroups) {
    text += entry(group.name, optionLines(kOptionsOfEveryVerb), quoted(group.actions->name), true);
  }
  for (const tVerbRow& verb : kVerbs) {
    text += entry(verb.name, optionLines(kOptionsOfEveryVerb) + optionLines(verb.options),
                  positionalSets(verb));
  }
  return text + "    }\n";
}

}  // namespace

std::string powershellScript() {
  return std::string(kHead) + wordLists() + grammar() + std::string(kBody);
}

}  // namespace nCommandLine
