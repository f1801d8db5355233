// packcheck: what Setup.exe would do with a pack, told to its author.

#include <CLI/CLI.hpp>
#include <iostream>

#include "Plan.h"

int main(int count, char** arguments) {
  CLI::App app("What Setup.exe would do with a pack");
  talu::PlanOptions options;
  CLI::App* plan = app.add_subcommand("plan", "Runs the installation on a simulated machine");
  plan->add_option("PACK", options.Pack)->required()->check(CLI::ExistingDirectory);
  app.require_subcommand(1);
  CLI11_PARSE(app, count, arguments);
  const talu::PlannedRun run(
      options, [](const auto&, const auto& event) { std::cout << event.ToJson() << '\n'; });
  return run.Finished() ? 0 : 1;
}
