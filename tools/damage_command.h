// The `damage` command of kora-writer:
//
//   kora-writer damage <dir> [--seed S]
//
// damages the analysis in <dir> in place as the seed chooses (see
// analysis_damage.h) and prints one line saying what was done.
#ifndef KORA_TOOLS_DAMAGE_COMMAND_H_
#define KORA_TOOLS_DAMAGE_COMMAND_H_

namespace lumo {
namespace writer {

// Runs the command on the arguments of kora-writer (argv[1] is "damage").
// Returns the exit code: 0 done, 1 the analysis could not be damaged (with
// the reason on stderr), 2 bad usage.
int damageCommand(int argc, char** argv);

}  // namespace writer
}  // namespace lumo

#endif  // KORA_TOOLS_DAMAGE_COMMAND_H_
