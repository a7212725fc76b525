#pragma once

namespace settings_host {

// How long the page's own waits last (100 ms after a row was added, 2 s of a row that has ended), in percent of what it
// asks for; 100 until this is called. Waits that run are lengthened or shortened, too. Any thread.
void SetWaitPercent(unsigned percent);

}  // namespace settings_host
