"""Every kind of instruction that stands in the library's code is one that the other tests run, and so
is every rule of the executor."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import generated_functions
import small_module
from executor import ir
from executor.machine import Machine

import library_code

# Kinds of instructions that yield nothing which could be compared, and where they are tested.
ELSEWHERE = {
    "call of assembly that faults": "claims_test.py: test_fault",
    "call of a note of the compiler": "nothing is done for it",
}


def library():
    """The library's code: compiled here, or what KORVEL_PROOF_LIBRARY_CODE names."""
    given = os.environ.get("KORVEL_PROOF_LIBRARY_CODE")
    if given:
        return ir.read_module(given)
    tree = Path(__file__).resolve().parents[2]
    with tempfile.TemporaryDirectory() as folder:
        build = Path(folder, "build")
        done = subprocess.run(
            ["cmake", "--preset", "windows-arm64", "-B", str(build), "-DKORVEL_TESTS=OFF",
             "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"], cwd=tree, capture_output=True, text=True)
        if done.returncode:
            raise SystemExit(f"the Windows DLL cannot be configured: {done.stderr}")
        return ir.read_module(library_code.compile_library(build, Path(folder, "code")))


def operations(modules):
    found, promised = {}, set()
    for module in modules:
        for function in module.functions.values():
            for block in function.blocks:
                for instruction in block.instructions:
                    found.setdefault(small_module.operation(function, instruction),
                                     f"{function.name}: {instruction.text}")
                    promised |= small_module.promises(instruction)
    return found, promised


class Operations(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        tested = small_module.functions_of_files() + generated_functions.text()
        cls.tested, cls.promises_tested = operations([small_module.assemble(tested)])

    def test_library(self):
        found, promised = operations([library()])
        self.assertGreater(len(found), 80)  # the library's code has been read
        left = {f"{kind} ({where})" for kind, where in found.items()
                if kind not in self.tested and kind not in ELSEWHERE}
        self.assertEqual(left, set(), "kinds of instructions without a test")
        self.assertEqual(promised - self.promises_tested, set())

    def test_rules(self):
        rules = {n.removeprefix("do_") for n in dir(Machine) if n.startswith("do_")}
        tested = {kind.split(" ")[0] for kind in self.tested}
        self.assertEqual(rules - tested, set())

    def test_an_operation_without_a_test_is_found(self):
        module = small_module.assemble("define double @f(double %a) {\n  ret double %a\n}\n"
                                       "define i128 @g(i128 %a) {\n  %b = add i128 %a, %a\n"
                                       "  ret i128 %b\n}\n")
        found, _ = operations([module])
        self.assertEqual(set(found) - set(self.tested), {"add i128"})


class NotUnderstood(unittest.TestCase):
    """What the executor has no rule for stops it."""

    CASES = {
        "fence": "define void @f() {\n  fence seq_cst\n  ret void\n}",
        "select of vectors": "define <2 x i32> @f(<2 x i1> %c, <2 x i32> %a, <2 x i32> %b) {\n"
                             "  %r = select <2 x i1> %c, <2 x i32> %a, <2 x i32> %b\n"
                             "  ret <2 x i32> %r\n}",
        "minimum of vectors": "declare <2 x i32> @llvm.umin.v2i32(<2 x i32>, <2 x i32>)\n"
                              "define <2 x i32> @f(<2 x i32> %a, <2 x i32> %b) {\n  %r = call "
                              "<2 x i32> @llvm.umin.v2i32(<2 x i32> %a, <2 x i32> %b)\n"
                              "  ret <2 x i32> %r\n}",
        "saturating sum": "declare i32 @llvm.uadd.sat.i32(i32, i32)\n"
                          "define i32 @f(i32 %a) {\n  %r = call i32 @llvm.uadd.sat.i32(i32 %a, i32 1)"
                          "\n  ret i32 %r\n}",
        "widened vectors": "define <2 x i64> @f(<2 x i32> %a) {\n"
                           "  %r = sext <2 x i32> %a to <2 x i64>\n  ret <2 x i64> %r\n}",
        "unknown function": "declare void @g()\ndefine void @f() {\n  call void @g()\n  ret void\n}",
        "unknown assembly": "define void @f() {\n  call void asm sideeffect \"nop\", \"\"()\n"
                            "  ret void\n}",
        "table that moves": "@t = private global [2 x i32] [i32 1, i32 2], align 4\n"
                            "define i32 @f(i64 %a) {\n  %at = getelementptr i32, ptr @t, i64 %a\n"
                            "  %r = load i32, ptr %at, align 4\n  ret i32 %r\n}",
    }

    def test_each(self):
        from executor.machine import NotUnderstood as Stops
        import z3
        for what, text in self.CASES.items():
            with self.subTest(what):
                module = small_module.assemble(text)
                function = module.functions["f"]
                made = {"vector": lambda t: [z3.BitVec(f"v{i}", t.element.bits)
                                             for i in range(t.count)],
                        "int": lambda t: z3.BitVec("n", t.bits)}
                arguments = [made[t.kind](t) for t in function.argument_types]
                with self.assertRaises(Stops):
                    small_module.make_machine(module).run("f", arguments)


if __name__ == "__main__":
    unittest.main()
