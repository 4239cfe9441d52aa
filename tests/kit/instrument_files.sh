# shellcheck shell=bash
# Sourced: a measurement file of four ramps on standard input, as instruments' programs would have written it.
# Drives of 0 to 255 in, as simulate_display writes them. The displays are simulated, and the files made here.

rows_of() { awk '/^;/ || NF < 6 { next } { print }'; }  # R G B X Y Z, without comments and header

as_ti3() {  # ArgyllCMS dispread: white and black once, percent, cd/m2
  rows_of | awk '!seen[$1, $2, $3]++' | awk '
    { row[NR] = sprintf("%d %.6f %.6f %.6f %s %s %s", NR, $1 / 2.55, $2 / 2.55, $3 / 2.55, $4, $5, $6) }
    END {
      print "CTI3   \n\nDESCRIPTOR \"Simulated display\"\nORIGINATOR \"Argyll dispread\""
      print "CREATED \"Sat Nov 21 12:00:00 2026\"\nDEVICE_CLASS \"DISPLAY\"\nCOLOR_REP \"RGB_XYZ\""
      print "TARGET_INSTRUMENT \"none, simulated\"\nNORMALIZED_TO_Y_100 \"NO\"\n\nNUMBER_OF_FIELDS 7\nBEGIN_DATA_FORMAT"
      print "SAMPLE_ID RGB_R RGB_G RGB_B XYZ_X XYZ_Y XYZ_Z\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS " NR "\nBEGIN_DATA"
      for (i = 1; i <= NR; ++i) print row[i]
      print "END_DATA"
    }'
}

as_csv() {  # a spreadsheet
  echo 'R,G,B,X (cd/m2),Y (cd/m2),Z (cd/m2)'
  rows_of | tr -s ' ' ',' | sed 's/^,//'
}

as_gray_scale_sheet() {  # HCFR, from the white ramp
  rows_of | awk '$1 == $2 && $2 == $3 && !seen[$1]++' | sort -n | awk '
    { n = NR; ire[n] = $1 / 2.55; x[n] = $4; y[n] = $5; z[n] = $6 }
    function line(name, v,   i) { printf "\"%s\"", name; for (i = 1; i <= n; ++i) printf ";\"%s\"", v[i]; print "" }
    END { for (i = 1; i <= n; ++i) k[i] = i - 1
          line("Measure", k); line("% White", ire); line("X", x); line("Y", y); line("Z", z) }'
}

as_primaries_sheet() {  # HCFR
  rows_of | awk '
    BEGIN { print "\"Measure\";\"Red\";\"Green\";\"Blue\"" }
    { on = ($1 == 255) + 2 * ($2 == 255) + 4 * ($3 == 255); lit = ($1 > 0) + ($2 > 0) + ($3 > 0) }
    lit == 1 && on { x[on] = $4; y[on] = $5; z[on] = $6 }
    END { print "\"X\";" x[1] ";" x[2] ";" x[4] "\n\"Y\";" y[1] ";" y[2] ";" y[4] "\n\"Z\";" z[1] ";" z[2] ";" z[4] }'
}
