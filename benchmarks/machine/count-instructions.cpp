// SPDX-License-Identifier: MIT
// A plugin for qemu's system emulator that counts the instructions which a guest's programs
// execute, those of its kernel left out. Guest programs tell by marks (Marks.h) what to count. Each
// end of a measurement adds a line to the file named by the argument "counts=": the instructions up
// to each mark passed on the way, and up to the end.
//
// The emulator's header is no package of Debian's; these are the functions of version 1 of its
// interface that are used here.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#define PLUGIN_EXPORT __attribute__((visibility("default")))

extern "C" {

using qemu_plugin_id_t = std::uint64_t;
struct qemu_info_t;
struct qemu_plugin_tb;
struct qemu_plugin_insn;
enum qemu_plugin_op { QEMU_PLUGIN_INLINE_ADD_U64 };
enum qemu_plugin_cb_flags { QEMU_PLUGIN_CB_NO_REGS };

void qemu_plugin_register_vcpu_tb_trans_cb(qemu_plugin_id_t id,
                                           void (*translated)(qemu_plugin_id_t, qemu_plugin_tb*));
void qemu_plugin_register_vcpu_tb_exec_inline(qemu_plugin_tb* block, qemu_plugin_op operation,
                                              void* number, std::uint64_t operand);
void qemu_plugin_register_vcpu_insn_exec_cb(qemu_plugin_insn* instruction,
                                            void (*executed)(unsigned int, void*),
                                            qemu_plugin_cb_flags flags, void* data);
std::size_t qemu_plugin_tb_n_insns(qemu_plugin_tb const* block);
std::uint64_t qemu_plugin_tb_vaddr(qemu_plugin_tb const* block);
qemu_plugin_insn* qemu_plugin_tb_get_insn(qemu_plugin_tb const* block, std::size_t index);
void const* qemu_plugin_insn_data(qemu_plugin_insn const* instruction);
std::size_t qemu_plugin_insn_size(qemu_plugin_insn const* instruction);

PLUGIN_EXPORT int qemu_plugin_version = 1;

} // extern "C"

namespace
{

constexpr std::uint64_t firstKernelAddress = std::uint64_t{1} << 63;
constexpr std::uint32_t firstMark = 0x6d61726b;

std::string path;
std::uint64_t executed = 0;
std::uint64_t atBeginning = 0;
std::vector<std::uint64_t> passed;

void begin(unsigned int /*processor*/, void* /*data*/)
{
    atBeginning = executed;
    passed.clear();
}

void pass(unsigned int /*processor*/, void* /*data*/)
{
    passed.push_back(executed - atBeginning);
}

void end(unsigned int processor, void* data)
{
    pass(processor, data);
    if (std::FILE* const file = std::fopen(path.c_str(), "a")) {
        for (std::uint64_t const count : passed) {
            std::fprintf(file, "%llu ", static_cast<unsigned long long>(count));
        }
        std::fputs("\n", file);
        std::fclose(file);
    }
}

/// Which mark an instruction is, counted from 0; or a large number.
std::uint32_t markOf(qemu_plugin_insn const* instruction)
{
    constexpr std::array<unsigned char, 3> head = {0x0f, 0x1f, 0x80};
    std::uint32_t number = 0;
    if (qemu_plugin_insn_size(instruction) != head.size() + sizeof number) {
        return ~0U;
    }
    auto const* const bytes = static_cast<unsigned char const*>(qemu_plugin_insn_data(instruction));
    if (!std::equal(head.begin(), head.end(), bytes)) {
        return ~0U;
    }
    std::memcpy(&number, bytes + head.size(), sizeof number);
    return number - firstMark;
}

void translate(qemu_plugin_id_t /*id*/, qemu_plugin_tb* block)
{
    if (qemu_plugin_tb_vaddr(block) >= firstKernelAddress) {
        return;
    }
    std::size_t const count = qemu_plugin_tb_n_insns(block);
    qemu_plugin_register_vcpu_tb_exec_inline(block, QEMU_PLUGIN_INLINE_ADD_U64, &executed, count);
    constexpr std::array<void (*)(unsigned int, void*), 3> marks = {begin, pass, end};
    for (std::size_t i = 0; i < count; ++i) {
        qemu_plugin_insn* const instruction = qemu_plugin_tb_get_insn(block, i);
        std::uint32_t const mark = markOf(instruction);
        if (mark < marks.size()) {
            qemu_plugin_register_vcpu_insn_exec_cb(instruction, marks[mark], QEMU_PLUGIN_CB_NO_REGS,
                                                   nullptr);
        }
    }
}

} // namespace

extern "C" PLUGIN_EXPORT int qemu_plugin_install(qemu_plugin_id_t id, qemu_info_t const* /*info*/,
                                                 int argc, char** argv)
{
    constexpr char key[] = "counts=";
    for (int i = 0; i < argc; ++i) {
        if (std::strncmp(argv[i], key, std::strlen(key)) == 0) {
            path = argv[i] + std::strlen(key);
        }
    }
    qemu_plugin_register_vcpu_tb_trans_cb(id, translate);
    return path.empty() ? -1 : 0;
}
