#pragma once

namespace talu {

class Wizard;

/// Starts the wizard: finds the background picture, reads the title, shows the first page (not
/// modal) and returns. An uncaught error ends the program with the platform's error box.
void Main(Wizard& wizard);

}  // namespace talu
