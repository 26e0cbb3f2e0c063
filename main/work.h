// Work files and open tables of a run: what stands between session start and the top menu.
#pragma once

void work_open();
void work_close();
/// Clear: DTSER.Ann is deleted at the end and the next program is the launcher.
extern bool work_overdracht;
void work_naar_vrdstuk();
