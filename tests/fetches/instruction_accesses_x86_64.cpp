// By libcapstone.

#include <capstone/capstone.h>

#include <cstdio>
#include <cstdlib>

#include "tests/fetches/instruction_accesses.h"

namespace fetches {

namespace {

constexpr std::size_t kLongestInstruction_bytes = 15;

// Kept for the life of the process: opening it takes longer than decoding.
struct Decoder {
  csh handle = 0;
  cs_insn* instruction = nullptr;

  Decoder() {
    if (cs_open(CS_ARCH_X86, CS_MODE_64, &handle) != CS_ERR_OK ||
        cs_option(handle, CS_OPT_DETAIL, CS_OPT_ON) != CS_ERR_OK) {
      std::fprintf(stderr, "libcapstone does not decode x86-64\n");
      std::abort();
    }
    instruction = cs_malloc(handle);
  }
};

// False for a register that addresses no memory in 64-bit programs.
bool register_value(const ucontext_t& at, x86_reg name, uint64_t& value) {
  const auto general = [&](int index) {
    value = static_cast<uint64_t>(at.uc_mcontext.gregs[index]);
    return true;
  };
  switch (name) {
    case X86_REG_INVALID: value = 0; return true;
    case X86_REG_RAX: return general(REG_RAX);
    case X86_REG_RBX: return general(REG_RBX);
    case X86_REG_RCX: return general(REG_RCX);
    case X86_REG_RDX: return general(REG_RDX);
    case X86_REG_RSI: return general(REG_RSI);
    case X86_REG_RDI: return general(REG_RDI);
    case X86_REG_RBP: return general(REG_RBP);
    case X86_REG_RSP: return general(REG_RSP);
    case X86_REG_R8: return general(REG_R8);
    case X86_REG_R9: return general(REG_R9);
    case X86_REG_R10: return general(REG_R10);
    case X86_REG_R11: return general(REG_R11);
    case X86_REG_R12: return general(REG_R12);
    case X86_REG_R13: return general(REG_R13);
    case X86_REG_R14: return general(REG_R14);
    case X86_REG_R15: return general(REG_R15);
    default: return false;
  }
}

// Whether a mask may leave out bytes of the operand.
bool may_be_masked(const cs_x86& details) {
  for (unsigned i = 0; i < details.op_count; ++i) {
    const cs_x86_op& operand = details.operands[i];
    if (operand.type == X86_OP_REG && operand.reg >= X86_REG_K1 && operand.reg <= X86_REG_K7) {
      return true;
    }
  }
  return false;
}

// What reads memory and then stores there, of which libcapstone does not say the first.
bool exchanges(const cs_insn& instruction) {
  return instruction.detail->x86.prefix[0] == X86_PREFIX_LOCK || instruction.id == X86_INS_CMPXCHG;
}

std::string hexadecimal(const uint8_t* bytes, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X", bytes[i]);
    text += digits;
  }
  return text;
}

}  // namespace

// libcapstone knows where the operands are and how large they are; of their directions it is not
// always right (4.0.2 takes the target of movups for a source, and that of test for both). What the
// processor says of the fault decides: it was about to store, or it was not. Changes in place fault as
// stores, and are those that libcapstone says to read as well.
std::vector<Access> instruction_accesses(const ucontext_t& stopped_at, uintptr_t fault,
                                         std::string& refusal) {
  constexpr greg_t kStore = 2;
  static const Decoder decoder;
  uint64_t pc = static_cast<uint64_t>(stopped_at.uc_mcontext.gregs[REG_RIP]);
  const auto* code = reinterpret_cast<const uint8_t*>(pc);
  std::size_t code_bytes = kLongestInstruction_bytes;
  if (!cs_disasm_iter(decoder.handle, &code, &code_bytes, &pc, decoder.instruction)) {
    refusal = "an instruction that libcapstone does not know (" +
              hexadecimal(code, kLongestInstruction_bytes) + ")";
    return {};
  }
  const cs_insn& instruction = *decoder.instruction;
  const cs_x86& details = instruction.detail->x86;
  refusal = std::string(instruction.mnemonic) + " " + instruction.op_str + " (" +
            hexadecimal(instruction.bytes, instruction.size) + ")";
  if (may_be_masked(details)) return {};
  const bool fault_stores = (stopped_at.uc_mcontext.gregs[REG_ERR] & kStore) != 0;
  std::vector<Access> accesses;
  for (unsigned i = 0; i < details.op_count; ++i) {
    const cs_x86_op& operand = details.operands[i];
    if (operand.type != X86_OP_MEM) continue;
    // Relative to the instruction: its constants, which no caller hands over.
    if (operand.mem.base == X86_REG_RIP) continue;
    uint64_t base = 0;
    uint64_t index = 0;
    // Segments but those of the thread start at 0.
    if (!register_value(stopped_at, operand.mem.base, base) ||
        !register_value(stopped_at, operand.mem.index, index) ||
        operand.mem.segment == X86_REG_FS || operand.mem.segment == X86_REG_GS ||
        operand.size == 0 || operand.access == 0) {
      return {};
    }
    const auto scale = static_cast<uint64_t>(operand.mem.scale);
    const auto displacement = static_cast<uint64_t>(operand.mem.disp);
    Access access = {base + index * scale + displacement, operand.size,
                     (operand.access & CS_AC_READ) != 0, (operand.access & CS_AC_WRITE) != 0};
    if (fault >= access.address && fault - access.address < access.bytes) {
      access.loads = !fault_stores || (access.loads && access.stores) || exchanges(instruction);
      access.stores = fault_stores;
    }
    accesses.push_back(access);
  }
  return accesses;
}

}  // namespace fetches
