#include "tools/commandline/generatedtexts.h"

namespace nCommandLine {
namespace {

constexpr std::string_view kHead =
    R"ps(# Completes the command lines of @program@ in PowerShell; printed by `@program@ completion powershell`.
#
#   @program@ completion powershell | Out-String | Invoke-Expression
#
# for one session; in the file that $PROFILE names for all.

Register-ArgumentCompleter -Native -CommandName @('@program@', '@program@.exe') -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)

)ps";

constexpr std::string_view kBody = R"ps(
    $verb = ''
    $ended = $false
    $given = 0
    $valued = $null
    $used = @()
    foreach ($element in @($commandAst.CommandElements | Select-Object -Skip 1)) {
        if ($element.Extent.EndOffset -ge $cursorPosition) {
            break
        }
        $text = $element.Extent.Text
        if ($null -ne $valued) {
            $valued = $null
        } elseif (-not $ended -and $text -eq '--') {
            $ended = $true
        } elseif (-not $ended -and $text.StartsWith('-')) {
            $name, $value = $text -split '=', 2
            $option = @($grammar[$verb].Options | Where-Object { $_.Name -eq $name })
            $used += $option
            if ($option.Count -gt 0 -and $option[0].TakesValue -and $null -eq $value) {
                $valued = $option[0]
            }
        } elseif ($verb -eq '' -or $grammar[$verb].IsGroup) {
            $verb = "$verb $text".TrimStart()
            if (-not $grammar.ContainsKey($verb)) {
                return
            }
        } else {
            $given += 1
        }
    }

    # A value follows its option, or stands in one word with it: --option=value.
    $typed = "$wordToComplete"
    $prefix = ''
    if ($null -eq $valued -and -not $ended -and $typed -match '^--[a-z-]+=') {
        $prefix = $Matches[0]
        $typed = $typed.Substring($prefix.Length)
        $name = $prefix.TrimEnd('=')
        $valued = $grammar[$verb].Options |
            Where-Object { $_.Name -eq $name -and $_.TakesValue }
        if ($null -eq $valued) {
            return
        }
    }

    $positionals = $grammar[$verb].Positionals
    if ($grammar[$verb].RepeatsLast -and $given -ge $positionals.Count) {
        $given = $positionals.Count - 1
    }
    if ($ended -and $grammar[$verb].RunsProgram) {
        return
    }
    if ($null -ne $valued) {
        if ($valued.Words -eq '') {
            return
        }
        $offered = $words[$valued.Words]
    } elseif ((-not $ended -and $typed.StartsWith('-')) -or $given -ge $positionals.Count) {
        # Leaves out the options that were given, and those that they exclude.
        $names = @($used | Where-Object { -not $_.Repeatable } | ForEach-Object { $_.Name })
        $choices = @($used | ForEach-Object { $_.Choice } | Where-Object { $_ -ne '' })
        $offered = @($grammar[$verb].Options |
            Where-Object { $names -notcontains $_.Name -and $choices -notcontains $_.Choice })
    } elseif ($positionals[$given] -ne '') {
        $offered = $words[$positionals[$given]]
    } else {
        return
    }
    $offered |
        Where-Object { $_.Name.StartsWith($typed, [StringComparison]::OrdinalIgnoreCase) } |
        ForEach-Object {
            [System.Management.Automation.CompletionResult]::new(
                $prefix + $_.Name, $_.Name, 'ParameterValue', $_.Meaning)
        }
}
)ps";

// In a single-quoted PowerShell string only the single quote is special; it is doubled.
std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char character : text) {
    result.append(character == '\'' ? 2 : 1, character);
  }
  return result + "'";
}

std::string wordLists(const tGrammar& grammar) {
  std::string text = "    $words = @{\n";
  for (const tWordSet* const set : grammar.wordSets) {
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
    text +=
        "                @{ Name = " + quoted(row.name) + "; Meaning = " + quoted(row.description) +
        "; TakesValue = " + (row.isFlag() ? "$false" : "$true") +
        "; Words = " + quoted(row.words == nullptr ? "" : row.words->name) +
        "; Choice = " + quoted(row.choice) + (row.repeatable ? "; Repeatable = $true }\n" : " }\n");
  }
  return text;
}

std::string entry(std::string_view verb, const std::string& options, const std::string& positionals,
                  bool isGroup = false, const std::string& more = "") {
  return "        " + quoted(verb) + " = @{\n            Options = @(\n" + options +
         "            )\n            Positionals = @(" + positionals +
         ")\n            IsGroup = " + (isGroup ? "$true" : "$false") + more + "\n        }\n";
}

// The lines of properties that few verbs have.
std::string further(const tVerbRow& verb) {
  const bool repeatsLast = !verb.positionals.empty() && verb.positionals.back().repeatable;
  return std::string(repeatsLast ? "\n            RepeatsLast = $true" : "") +
         (verb.program == nullptr ? "" : "\n            RunsProgram = $true");
}

std::string positionalSets(const tVerbRow& verb) {
  std::string text;
  for (const tPositionalRow& row : verb.positionals) {
    text += (text.empty() ? "" : ", ") + quoted(row.words == nullptr ? "" : row.words->name);
  }
  return text;
}

// The words that may follow a verb, by its name; the empty name has the words before any verb.
std::string grammarTable(const tGrammar& grammar) {
  std::string text = "    $grammar = @{\n";
  text += entry("", optionLines(grammar.optionsOfEveryVerb) + optionLines(kProgramOptions),
                quoted(grammar.firstWords->name));
  for (const tVerbGroupRow& group : grammar.groups) {
    text += entry(group.name, optionLines(grammar.optionsOfEveryVerb), quoted(group.actions->name),
                  true);
  }
  for (const tVerbRow& verb : grammar.verbs) {
    text += entry(verb.name, optionLines(grammar.optionsOfEveryVerb) + optionLines(verb.options),
                  positionalSets(verb), false, further(verb));
  }
  return text + "    }\n";
}

}  // namespace

std::string powershellScript(const tGrammar& grammar) {
  return withProgram(grammar, kHead) + wordLists(grammar) + grammarTable(grammar) +
         std::string(kBody);
}

}  // namespace nCommandLine
