// What a walk over series shows of itself. Without a screen nothing is shown.
#include "sub/voortgang.h"

#include "scr/scr.h"
#include "sub/tabellen.h"
#include "sub/teksten.h"

SerieVoortgang::SerieVoortgang(const std::string& bezig) {
  if (scr_ctx == nullptr) return;
  scr_clreol(scr_ctx->lines, 1);
  kolom = 2 + scr_print(A_LABEL, scr_ctx->lines, 1, "%s%s", bezig, txt(T_ADVO_SERIENUMMER));
}

void SerieVoortgang::toon(const Serienr& nr) const {
  if (scr_ctx != nullptr) scr_print(A_WAARDE, scr_ctx->lines, kolom, "%s", serie_sleutel(nr));
}

void SerieVoortgang::onleesbaar(const Serienr& nr) {
  ++overgeslagen;
  if (scr_ctx == nullptr) return;
  const int rij = scr_ctx->lines - 1;
  scr_clreol(rij, 1);
  scr_print(A_WAARDE, rij, 1, "%s  %s", serie_tekst(nr), txt(T_ADVO_ONLEESBAAR));
}

void SerieVoortgang::einde() const {
  if (overgeslagen == 0 || scr_ctx == nullptr) return;
  msg_waarschuw(str_format("%d %s", overgeslagen, txt(T_ADVO_SERIES_OVERGESLAGEN)).c_str(),
                txt(T_ADVO_ONLEESBAAR));
}
