#pragma once

namespace talu {

class Wizard;

/// Starts the wizard: finds the background picture, reads the title, shows the first page,
/// modeless, and returns. An error that nobody catches ends the program with the platform's error
/// box.
void Main(Wizard& wizard);

}  // namespace talu
