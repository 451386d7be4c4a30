# Writes into the current directory what the management tool prints for `ports` ports of one
# controller model, made from the sample server's first controller.
#
#   awk -v ports=N -v order=ORDER -v layout=LAYOUT -v sample=demo/answers -f ports.awk
#
# ORDER; each lists the functions of a controller from the highest down:
#   usual        controllers of 2 iSCSI and 2 FCoE ports; all FCoE ports first, as the tool lists
#                the ports that it knows by WWN before those that it knows by MAC address
#   fcoe         controllers of 2 FCoE ports and nothing else
#   alternating  controllers of 4 iSCSI ports and of 4 FCoE ports in turn
#   scattered    as usual, but no two ports of a controller stand side by side
#   one-port     controllers of 1 FCoE port
#   one-serial   all ports have one serial number, and each could be the flash port of all
# LAYOUT:
#   files        as the tool keeps them for --simulate
#   answers      as the stand-in for the management tool reads them

function content(file,    line, text) {
    while ((getline line < file) > 0) text = text line "\n"
    close(file)
    return text
}

function block(listing, opening) {
    listing = substr(listing, index(listing, opening))
    return substr(listing, 1, index(listing, "\n\n"))
}

function put(text, directory, name, suffix) {
    name = layout == "answers" ? directory "/" name ".txt" : name suffix
    printf "%s", text > name
    close(name)
}

function with(text, key, value) {
    sub("\n" key " *: [^\n]*", "\n" key " : " value, text)
    return text
}

function changed(text) {
    gsub("02:00:5e:10:01:02", wwn, text)
    gsub("02-00-5E-10-01-0[02]", mac, text)
    gsub("NV4200A1001", serial, text)
    text = with(text, "Port Number", port_number)
    return with(with(text, "PCI Function", pci_function), "PCI Func Number", pci_function)
}

function port(controller, on_function, type,    name) {
    wwn = sprintf("02:00:5e:%02x:%02x:%02x", count / 65536, count / 256 % 256, count % 256)
    mac = toupper(wwn)
    gsub(":", "-", mac)
    ++count
    serial = sprintf("NV42%06d", controller)
    pci_function = on_function
    port_number = order == "one-serial" ? 0 : pci_function % 2
    name = serial "_" pci_function
    if (layout == "answers") name = type == "FCoE" ? "10:00:" wwn : mac
    printf "%s\n", changed(blocks[type]) > list
    put(changed(attributes[type]), "hbaattributes", name, "_hba_attributes.out")
    if (type == "FCoE") put(changed(mapping), "targetmapping", name, "_target_mapping.out")
}

BEGIN {
    list = layout == "answers" ? "listhbas.txt" : "local_hba_list.out"
    listing = content(sample "/listhbas.txt")
    blocks["FCoE"] = block(listing, "Port WWN        : 10:00:02:00:5e:10:01:02")
    blocks["iSCSI"] = block(listing, "Permanent MAC   : 02-00-5E-10-01-00")
    attributes["FCoE"] = content(sample "/hbaattributes/10:00:02:00:5e:10:01:02.txt")
    attributes["iSCSI"] = content(sample "/hbaattributes/02-00-5E-10-01-00.txt")
    mapping = content(sample "/targetmapping/10:00:02:00:5e:10:01:02.txt")

    controllers = int(ports / 4)
    if (order == "fcoe") {
        for (c = 0; c < ports / 2; ++c)
            for (f = 1; f >= 0; --f) port(c, f, "FCoE")
    } else if (order == "alternating") {
        for (c = 0; c < controllers; ++c)
            for (f = 3; f >= 0; --f) port(c, f, c % 2 ? "FCoE" : "iSCSI")
    } else if (order == "scattered") {
        for (f = 3; f >= 0; --f)
            for (c = 0; c < controllers; ++c) port(c, f, f >= 2 ? "FCoE" : "iSCSI")
    } else if (order == "one-port") {
        for (c = 0; c < ports; ++c) port(c, 0, "FCoE")
    } else if (order == "one-serial") {
        for (p = ports - 1; p >= 0; --p) port(0, sprintf("0%02d", p % 100), "FCoE")
    } else {
        # The ports that are left over are a controller of FCoE ports.
        for (f = ports % 4 - 1; f >= 0; --f) port(controllers, f, "FCoE")
        for (c = 0; c < controllers; ++c)
            for (f = 3; f >= 2; --f) port(c, f, "FCoE")
        for (c = 0; c < controllers; ++c)
            for (f = 1; f >= 0; --f) port(c, f, "iSCSI")
    }
}
