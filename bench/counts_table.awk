# Prints counts beside their budgets, a case a line and a pair of columns for each target; a star stands behind
# a budget that is exceeded. Fails when a count is missing or no positive number, and, where `check` is 1, when
# a case takes more than its budget, when it has none, and when a budget is of no case. Says on standard error
# what is wrong.
#
# awk -v check=0|1 -f counts_table.awk BUDGETS COUNTS...   each file of counts is named for its target
BEGIN { FS = "\t"; number = "^[0-9]+([.][0-9]+)?$" }

function complain(what) {
  print what >"/dev/stderr"
  wrong = 1
}

function is_floor(name) { return name ~ /^floor\// }

# The first line names the targets.
FILENAME == ARGV[1] && FNR == 1 {
  for (column = 2; column <= NF; column++) budget_column[$column] = column
  next
}
FILENAME == ARGV[1] {
  if ($1 in budget_line) complain(FILENAME ": two lines for '" $1 "'")
  budget_line[$1] = $0
  next
}

FNR == 1 {
  target = FILENAME
  sub(/.*\//, "", target)
  targets[++target_count] = target
  counted[target] = 1
}
target_count == 1 { names[++case_count] = $1; known[$1] = 1 }
{ counts[$1, target] = $2 }

function budget_of(name, target,    fields) {
  if (!(name in budget_line) || !(target in budget_column)) return ""
  split(budget_line[name], fields, FS)
  return fields[budget_column[target]]
}

function is_positive(text) { return text ~ number && text + 0 > 0 }

function is_above(count, budget) { return is_positive(budget) && count + 0 > budget + 0 }

function check_budget(name, target, count, budget) {
  if (is_floor(name)) return # nothing of the library
  if (!is_positive(budget)) {
    complain("no budget for '" name "' on " target)
  } else if (is_above(count, budget)) {
    complain("'" name "' takes " count " instructions on " target "; its budget is " budget)
  }
}

function check_names(    name, target) {
  for (target in budget_column) {
    if (!(target in counted)) complain("budgets for '" target "', which is no target")
  }
  for (name in budget_line) {
    if (!(name in known)) complain("a budget for '" name "', which is no case")
    else if (is_floor(name)) complain("a budget for '" name "', which is nothing of the library")
  }
}

END {
  if (target_count != ARGC - 2 || case_count == 0) {
    complain("no counts")
    exit 1
  }
  printf "%-28s", "case"
  for (t = 1; t <= target_count; t++) printf " %14s %7s ", targets[t], "budget"
  printf "\n"
  for (c = 1; c <= case_count; c++) {
    printf "%-28s", names[c]
    for (t = 1; t <= target_count; t++) {
      count = counts[names[c], targets[t]]
      budget = budget_of(names[c], targets[t])
      if (!is_positive(count)) complain("no count of '" names[c] "' on " targets[t])
      if (check) check_budget(names[c], targets[t], count, budget)
      printf " %14s %7s%1s", count == "" ? "-" : count, budget == "" ? "-" : budget,
             is_above(count, budget) ? "*" : ""
    }
    printf "\n"
  }
  if (check) check_names()
  exit wrong
}
