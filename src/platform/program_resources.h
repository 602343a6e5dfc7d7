#pragma once

// Makes the files shipped inside the program (help page, icon) available, and gives its windows their icon as soon as
// the event loop runs: decoding it must not hold up the first window. Once, after the application object is made.
void use_program_resources();
