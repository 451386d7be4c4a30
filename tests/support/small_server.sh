# shellcheck shell=sh
# Makes from the sample server, in the current directory, the smallest server on which a run says
# nearly every line: the flash port and two FCoE ports of a controller, one of which has every value
# that a port can have, and a port without a serial number.
cat > FC_HBA_Conditions.txt <<'END'
# A comment
--+--
Norvik   | NX-4    | F1A0 | 4201 | F1A0 | 0011 | nx4200 | c7 | c8 | nx4200-4.2.18.grp | *.prg | c11 | c12 | HELMSTOR | Boreal,Arctis | t1 | | p | t2 | SOLVEIG | | t3
END
cd "$T/answers" || exit 1
awk -v RS= -v ORS='\n\n' '
    !/-01-00\n|5e:10:01:0|5e:10:05/ { next }
    !/01:02/ { gsub(/(Node|Fabric|Flags|Host|Mode |PCI Bus)[^\n]*\n/, "") }
    /-01-00/ { gsub(/(Mfg|Model)[^\n]*\n/, "") }
    /05:00/  { gsub(/(Port N|PCI F)[^\n]*\n/, ""); sub(/NV16[^\n]*/, "n/a"); sub(/: FC/, ": FCoE") }
    { print }' listhbas.txt > list && mv list listhbas.txt
truncate -s 0 hbaattributes/02-00-5E-10-01-00.txt hbaattributes/10:00:02:00:5e:10:01:03.txt
cp targetmapping/10:00:02:00:5e:10:01:03.txt targetmapping/10:00:02:00:5e:10:01:02.txt
sed -i '/^[TFSLB]/d; s/HELM.*/SOLVEIG/' targetmapping/10:00:02:00:5e:10:01:03.txt
