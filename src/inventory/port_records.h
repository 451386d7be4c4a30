#pragma once

#include <cstdint>
#include <string>

struct hba_info;

/// What the management tool says of a port's controller. Only the four numbers are read after
/// the collection; the texts are cut to their fields.
struct hba_attributes_entry {
    char HostName[64];
    char Manufacturer[64];
    char SerialNumber[24];
    char Model[64];
    char ModelDesc[256];
    char NodeWWN[24];
    char NodeSymname[256];
    char HWVersion[16];
    char FWVersion[16];
    char VendorSpecID[5];
    char NumberOfPorts[4];
    char DriverName[32];
    char DeviceID[5];
    char HBAType[64];
    char OperationalFW[16];
    char IEEEAddress[18];
    char PXEBoot[10];
    char DriverVersion[16];
    char BoardTemperature[16];
    char FunctionType[16];
    char SubDeviceID[5];
    char PortNumber[16];
    char PCIBusNumber[5];
    char PCIFuncNumber[5];
    char SubVendorID[5];
    char FirmwareStatus[16];
    char ServiceProcessorFWName[16];
    char ULPFWName[16];
    char IPLFilename[16];
    char NCSIVersion[16];
    char StartupBootCodeVersion[16];
    char FCoEUniversalVersion[16];
    char FCoEx86BIOSVersion[16];
    char FCoEEFIVersion[16];
    char FCoEFCODEVersion[16];
    char UEFIBIOSVersion[16];
    char UEFINICVersion[16];
    char UEFIFCODEVersion[16];
    char UEFIiSCSIVersion[16];
    char PCIExpressLinkSpeed[16];
    char PCIExpressBusWidth[10];
    std::int32_t vendor_id;     ///< of VendorSpecID; -1 when that is no hexadecimal number
    std::int32_t device_id;     ///< of DeviceID
    std::int32_t subvendor_id;  ///< of SubVendorID
    std::int32_t subdevice_id;  ///< of SubDeviceID
};

/// The storage subsystem attached to a port, as the last LUN of the output has it.
struct target_mapping_entry {
    char FCPLun[24];
    char SCSIOSLun[5];
    char LunDeviceName[128];
    char VendorID[64];
    char ProductID[64];
    char ProductVersion[16];
    char Type[5];
    char SCSICapacity[12];
    char BlockSize[12];
};

/// One port as the management tool lists it. A record is opened by its WWN or by its MAC
/// address, so it has at most one of PortWWN and PermanentMAC.
struct hba_info {
    char PortWWN[24];
    char NodeWWN[24];
    char FabricName[24];
    char PermanentMAC[18];
    char CurrentMAC[18];
    char Flags[10];
    char HostName[64];
    char Mfg[64];
    char SerialNo[24];  ///< of the controller; begins "n/a" when the port has none
    char PortNumber[6];
    std::int32_t port_index;  ///< filled by no stage, so that messages print 0
    char Mode[16];
    char PCIBusNumber[4];
    char PCIFunction[4];
    char PortType[16];  ///< "FC", "FCoE" and "iSCSI" are tested for
    char Model[64];
    hba_attributes_entry* attributes;      ///< null while the port has none
    target_mapping_entry* target_mapping;  ///< null: no storage was seen
    hba_info* flash_port;      ///< the port through which this port's controller is flashed
    hba_info* next_ctrl_port;  ///< next FCoE port of the chain that hangs on a flash port
    bool flash_done;
    bool check_done;
};

/// All ports, ended by a null entry; null while there is none. Records live until the process
/// ends, but for those that release_fc_ports takes away. Links only refer to records of the list.
extern hba_info** p_hba_info_list;

/// A new zeroed port at the end of p_hba_info_list; null when memory ran out.
hba_info* get_new_hba_info_entry();

/// A new zeroed entry, which the caller adds to its port; null when memory ran out.
hba_attributes_entry* get_new_hba_attributes_entry();
target_mapping_entry* get_new_target_mapping_entry();

/// Whether the port is of exactly this type.
bool is_of_type(const hba_info& port, const char* type);

/// Whether the type of the port begins "FCoE".
bool is_fcoe(const hba_info& port);

/// Whether the port is a Fibre Channel port of either kind: of type "FC", or one that begins
/// "FCoE".
bool is_fc_or_fcoe(const hba_info& port);

/// Whether the port has a serial number; an empty one counts as one.
bool has_serial_number(const hba_info& port);

/// The port's WWN, or the MAC address of one that has none.
const char* address_of(const hba_info& port);

/// "function/number", by which a controller's ports are told apart.
std::string port_name(const hba_info& port);

/// The port's identifiers as -pci-id takes them, two where it has no subsystem identifiers; empty
/// where they are not known.
std::string pci_id_of(const hba_info& port);

/// Takes the ports of type exactly "FC" out of p_hba_info_list and releases their records.
void release_fc_ports();

/// Releases all records, for a process that collects more than once.
void release_port_records();
