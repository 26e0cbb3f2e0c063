// Keys: definition strings, images, the collation, and the order of whole keys.
#include <cstring>

#include "isam/ix.h"
#include "tests/support/ix_proef.h"

namespace {

/// A handle that has only definitions; good for the calls that touch no file.
struct Los {
  ICB icb{};
  explicit Los(const char* definitie, int k = 2) {
    icb.record_length = 255;
    IXUPDFCB(&icb, k, definitie);
    icb.block.key_number = static_cast<int8_t>(k);
  }
  const IxSleutel& s() const { return icb.keys[icb.block.key_number - 1]; }
  int vergelijk(const std::string& a, const std::string& b, int n = 0) {
    uint8_t x[60] = {}, y[60] = {};
    memcpy(x, a.data(), a.size());
    memcpy(y, b.data(), b.size());
    const int uit = IXCOMP(&icb, x, y, n == 0 ? s().key_length : n);
    EXPECT_EQ(uit<0, IXCOMP(&icb, y, x, n == 0 ? s().key_length : n)> 0);
    return uit < 0 ? -1 : uit > 0 ? 1 : 0;
  }
};

TEST(Sleutel, DefinitionStringsFillTheHeader) {
  ICB icb{};
  IXUPDFCB(&icb, 0, " Een tabel met een te lange naam , 200 ");
  EXPECT_EQ(std::string(icb.description, 19), "Een tabel met een t");
  EXPECT_EQ(icb.record_length, 200);
  IXUPDFCB(&icb, 0, ",0");
  EXPECT_EQ(icb.record_length, 200);

  IXUPDFCB(&icb, 1, "key1,C,5,14, I ,1,4");
  EXPECT_EQ(icb.keys[0].dup, 'N') << "the first key never has duplicates";
  EXPECT_EQ(icb.keys[0].key_length, 14);
  EXPECT_EQ(icb.keys[0].max_entries, 28);
  EXPECT_EQ(std::string(icb.keys[0].field_type), "CI");
  EXPECT_EQ(icb.keys[0].field_start[1], 1);
  EXPECT_EQ(icb.keys[0].field_end[0], 14);

  IXUPDFCB(&icb, 3, "veel te lang,I,1,4,c");
  EXPECT_EQ(icb.key_count, 3);
  EXPECT_EQ(icb.keys[2].key_length, 8);
  EXPECT_EQ(icb.keys[2].max_entries, 42);
  EXPECT_EQ(icb.keys[2].key_name[0], 'c') << "a lower-case letter is a name";
  IXUPDFCB(&icb, 3,
           "k,NODUPS,I,1,1,I,2,2,I,3,3,I,4,4,I,5,5,I,6,6,I,7,7,I,8,8,I,9,9,I,10,10,I,11,11");
  EXPECT_EQ(icb.keys[2].key_length, 10) << "an eleventh field ends the parsing";
  IXUPDFCB(&icb, 6, "k,I,1,1");
  EXPECT_EQ(icb.key_count, 3);
}

TEST(Sleutel, BuildingCallsCountPositions) {
  const ProefRec rec{};
  ICB icb{};
  UPDFCB_INX("Proef", &rec, sizeof rec);
  UPDFCB_END(&icb);
  UPDFCB_KEY(1, "een", false);
  UPDFCB_FLD('C', rec.naam, sizeof rec.naam);
  UPDFCB_FLD('I', &rec.nummer, 4);
  UPDFCB_END(&icb);
  UPDFCB_KEY(2, "twee", true);
  UPDFCB_FLD('I', &rec.groep, 2);
  UPDFCB_END(&icb);
  UPDFCB_END(&icb);  // nothing begun: nothing done
  EXPECT_EQ(icb.record_length, 64);
  EXPECT_EQ(icb.keys[0].field_start[0], 5);
  EXPECT_EQ(icb.keys[0].field_end[0], 14);
  EXPECT_EQ(icb.keys[0].field_end[1], 4);
  EXPECT_EQ(icb.keys[1].dup, 'J');
  EXPECT_EQ(icb.keys[1].key_length, 6);
}

TEST(Sleutel, ImageTurnsIntegersAndCutsTextAtItsNul) {
  Los l("k,C,1,6,I,7,8,I,9,12,I,13,15,I,16,16");
  l.icb.record_no = 0x01020304;
  const char rec[] = "ab\0xyz\x01\x02\x0A\x0B\x0C\x0D\x55\x55\x55\x7F";
  IXBLDKEY(&l.icb, rec, l.s().key_length);
  const char beeld[] = "ab\0\0\0\0\x02\x01\x0D\x0C\x0B\x0A\0\0\0\x7F\x01\x02\x03\x04";
  EXPECT_EQ(memcmp(l.icb.key_buf, beeld, 20), 0) << "a width of 3 is stored as zero";
  IXBLDKEY(&l.icb, rec, IXKEYLEN(&l.icb, 2));
  EXPECT_EQ(memcmp(l.icb.key_buf, "ab\0\0\0\0\x02\x01\0\0\0\0\0\0\0\0\0\0\0\0", 20), 0);
  EXPECT_EQ(IXKEYLEN(&l.icb, 0), 20);
  EXPECT_EQ(IXKEYLEN(&l.icb, 9), 16);
}

TEST(Sleutel, CollationFoldsThenTellsApart) {
  Los l("k,NODUPS,C,1,4");
  EXPECT_EQ(l.vergelijk("aBc", "AbC"), 0);
  EXPECT_EQ(l.vergelijk("a", "B"), -1);
  EXPECT_EQ(l.vergelijk("_", "a"), 1) << "folded to upper case, below the underscore";
  EXPECT_EQ(l.vergelijk("E", "\x82"), -1);
  EXPECT_EQ(l.vergelijk("\x8A", "\x82"), -1);
  EXPECT_EQ(l.vergelijk("E", "\x8A"), -1);
  EXPECT_EQ(l.vergelijk("Ez", "\x82y"), 1) << "accents only where the letters are the same";
  EXPECT_EQ(l.vergelijk("\x84\x8E", "\x8E\x84"), 0);
  EXPECT_EQ(l.vergelijk("A\tB", "AB"), 1) << "a control byte decides at level two";
  EXPECT_EQ(l.vergelijk("A\tB", "AC"), -1);
  EXPECT_EQ(l.vergelijk("\xE1", "SS"), -1) << "no secondary against two";
  EXPECT_EQ(l.vergelijk("\xE1", "ST"), -1);
  EXPECT_EQ(l.vergelijk("\xE1", "SR"), 1);
  EXPECT_EQ(l.vergelijk("\x91   ", "AE  "), 1) << "one character longer";
  EXPECT_EQ(l.vergelijk("\x91", "\x92"), 0);
  EXPECT_EQ(l.vergelijk("\xFF", "\xFE"), 1);
  EXPECT_EQ(l.vergelijk("\x7F", ""), 1);
  EXPECT_EQ(l.vergelijk("\x7F", " "), -1);
}

TEST(Sleutel, WholeKeysCompareFieldByField) {
  Los getal("k,I,1,4");
  EXPECT_EQ(getal.vergelijk("\xFF\xFF\xFF\xFF", "\x7F\xFF\xFF\xFF", 4), 1) << "-1 behind all";
  EXPECT_EQ(getal.vergelijk(std::string("\0\0\0\1\0\0\0\2", 8), std::string("\0\0\0\1\0\0\0\3", 8)),
            -1);
  EXPECT_EQ(
      getal.vergelijk(std::string("\0\0\0\1\0\0\0\2", 8), std::string("\0\0\0\1\0\0\0\3", 8), 4),
      0);
  Los samen("k,I,1,1,C,2,3,I,4,4");
  EXPECT_EQ(samen.vergelijk("\1ab\1", "\1AB\1"), 0);
  EXPECT_EQ(samen.vergelijk("\1ab\1", "\1AB\2"), -1);
  EXPECT_EQ(samen.vergelijk("\1ab\2",
                            "\1\x84"
                            "b\1"),
            -1)
      << "both levels of a field before the next";
  EXPECT_EQ(samen.vergelijk("\2aa\1", "\1zz\1"), 1);
  EXPECT_EQ(samen.vergelijk(std::string("\1ab\1\0\0\0\1", 8), std::string("\1AB\1\0\0\0\2", 8)),
            -1);
  EXPECT_EQ(samen.vergelijk("\1ab\1", "\1AB\2", 3), 0);
}

TEST(Sleutel, KeyToRecordAndUniqueValues) {
  TempDir map;
  const InMap in(map.pad);
  ICB* icb = IXCREATE("UNI", 1);
  IXUPDFCB(icb, 0, "Uniek,64");
  IXUPDFCB(icb, 1, "k,C,5,14,I,1,4");
  IXUPDFCB(icb, 2, "g,I,15,16,C,5,14");
  IXINITIX(icb);
  for (const auto& [n, naam, groep] : {std::tuple(1, "jas", 7), {2, "jas", 7}, {300, "broek", 8}}) {
    ProefRec r = proef_rec(n, naam, groep);
    ASSERT_TRUE(IXWRITE(icb, &r));
  }
  ProefRec r = proef_rec(9, "broek");
  ASSERT_TRUE(IXUNIQK(icb, &r, 2));
  EXPECT_EQ(r.nummer, 300) << "big-endian in the key, little-endian in the record";
  EXPECT_EQ(icb->record_no, 2);
  r = proef_rec(0, "jas");
  EXPECT_FALSE(IXUNIQK(icb, &r, 2));
  r = proef_rec(0, "hemd");
  EXPECT_FALSE(IXUNIQK(icb, &r, 2));
  EXPECT_FALSE(IXUNIQK(icb, &r, 1)) << "two names";
  IXSWITCH(icb, 2);
  r = proef_rec(0, "", 8);
  EXPECT_TRUE(IXUNIQK(icb, &r, 2));
  EXPECT_STREQ(r.naam, "broek");
  r = proef_rec(0, "", 7);
  EXPECT_FALSE(IXUNIQK(icb, &r, 2)) << "the number of the last field of a duplicate key counts";
  IXCLOSE(icb);
}

}  // namespace
