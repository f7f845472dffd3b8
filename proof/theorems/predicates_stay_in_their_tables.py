"""The three predicates answer 0 or 1, 0 for every format beyond the table, and load only inside it.

For every row, the unknown chip's and that of a GPU not yet identified among them, and all arguments.
Shown: for a format of 722 or more the answer is 0 without a load of a table by the format; for any
other every load is inside its table; isFormatRenderableByGpu and isFormatSampleableByGpu answer 0 on a
row that is no chip, after the one message, and leave none otherwise; isUBWCSupportedByGpu never leaves
one. What they answer for each chip is compared elsewhere, one by one.
With --quick: isUBWCSupportedByGpu, and of the other two the formats beyond the table.
"""

import z3

from callers import messages, place_any_row, row_words
from counterexample import Call
from executor import terms

FORMATS = 722


def prove(proof):
    format_ = z3.BitVec("format", 32)
    use, samples = z3.BitVec("use", 32), z3.BitVec("samples", 32)
    for export, more in (("isFormatRenderableByGpu", [use]),
                         ("isFormatSampleableByGpu", [samples, use]), ("isUBWCSupportedByGpu", [])):
        beyond(proof, export, format_, more)
        if not proof.quick or export == "isUBWCSupportedByGpu":
            within(proof, export, format_, more)


def call_of(proof, export, row, format_, more):
    ids = row_words(proof.module, 16, 4)

    def call(model):
        numbers = [model.eval(n, model_completion=True).as_long() for n in [format_, *more]]
        known = model.eval(row, model_completion=True).as_long()
        number = max(known, 1)

        def wrong(result, _):
            right = (0,) if numbers[0] >= FORMATS or number < 2 else (0, 1)
            return "" if result in right else f"the header says one of {right}"
        return Call(export, numbers, chip_id=ids[number], wrong=wrong,
                    first="get_gpu_pixel_alignment" if known else "")
    return call


def run(proof, export, arguments, condition, call_arguments):
    machine = proof.machine()
    row, memory, conditions = place_any_row(machine)
    outcomes = proof.run(machine, export, arguments, memory, conditions + [condition])
    call = call_of(proof, export, row, *call_arguments)
    proof.show_claims(machine, call)
    for outcome in outcomes:
        used = (outcome.state.notes.get("found") or (row,))[0]
        no_chip = z3.ULT(used, 2)
        said = messages(outcome)
        if export == "isUBWCSupportedByGpu":
            proof.require(f"{export} leaves no message", said == [])
        else:
            proof.require(f"{export} leaves one message or none",
                          said in ([], [(export, "Unknown Family ID %u")]))
            proof.show(f"{export} says that a chip is unknown where it is", outcome.state.conditions,
                       no_chip if said else z3.Not(no_chip), call=call)
        proof.show(f"{export} answers 0 on no chip", outcome.state.conditions + [no_chip],
                   terms.vector(outcome.value, 32) == 0, call=call)
    return outcomes, call


def beyond(proof, export, format_, more):
    condition = z3.UGE(format_, FORMATS)
    outcomes, call = run(proof, export, [format_, *more], condition, (format_, more))
    for outcome in outcomes:
        proof.show(f"{export} answers 0 beyond the table", outcome.state.conditions,
                   terms.vector(outcome.value, 32) == 0, call=call)
        proof.find(f"{export}: a format beyond the table", outcome.state.conditions)


def within(proof, export, format_, more):
    condition = z3.ULT(format_, FORMATS)
    outcomes, call = run(proof, export, [format_, *more], condition, (format_, more))
    for outcome in outcomes:
        value = terms.vector(outcome.value, 32)
        proof.show(f"{export} answers 0 or 1", outcome.state.conditions,
                   z3.Or(value == 0, value == 1), call=call)
    for answer in (0, 1):
        proof.require(f"{export} can answer {answer}", any(
            proof.prover.possible(o.state.conditions, terms.vector(o.value, 32) == answer)
            for o in outcomes))
