"""The controlled-vocabulary terms that the mzML writer uses: every accession
with its exact name, from the PSI-MS vocabulary (``MS:``) and the unit
ontology (``UO:``)."""

#: The vocabularies named in the file's ``cvList``: id, full name, version,
#: URI. The version is that of the PSI-MS release whose names are used here.
VOCABULARIES = (
    ("MS", "Proteomics Standards Initiative Mass Spectrometry Ontology", "4.1.28",
     "http://purl.obolibrary.org/obo/ms.obo"),
    ("UO", "Unit Ontology", None, "http://purl.obolibrary.org/obo/uo.obo"),
)

#: Name to accession.
ACCESSIONS = {
    # Spectrum and file content.
    "MS1 spectrum": "MS:1000579",
    "ms level": "MS:1000511",
    "centroid spectrum": "MS:1000127",
    "positive scan": "MS:1000130",
    "negative scan": "MS:1000129",
    "total ion current": "MS:1000285",
    "lowest observed m/z": "MS:1000528",
    "highest observed m/z": "MS:1000527",
    "base peak m/z": "MS:1000504",
    "base peak intensity": "MS:1000505",
    # Scans.
    "no combination": "MS:1000795",
    "scan start time": "MS:1000016",
    "inverse reduced ion mobility": "MS:1002815",
    # Binary arrays.
    "m/z array": "MS:1000514",
    "intensity array": "MS:1000515",
    "non-standard data array": "MS:1000786",
    "64-bit float": "MS:1000523",
    "32-bit float": "MS:1000521",
    "zlib compression": "MS:1000574",
    "no compression": "MS:1000576",
    # Instrument, software and processing.
    "instrument model": "MS:1000031",
    "custom unreleased software tool": "MS:1000799",
    "Conversion to mzML": "MS:1000544",
    # Units.
    "m/z": "MS:1000040",
    "number of detector counts": "MS:1000131",
    "volt-second per square centimeter": "MS:1002814",
    "second": "UO:0000010",
}

#: The name of the 1/K0 array of a frame's spectrum: the value of its
#: "non-standard data array" term. Its own term, MS:1003006 "mean inverse
#: reduced ion mobility array", is rejected by the semantic validator of
#: OpenMS 2.6: that vocabulary gives the ion mobility arrays a value type
#: (xsd:float) and no binary data types, so the validator demands a value
#: and refuses a 64-bit array. Readers that look arrays up by name, OpenMS's
#: among them, find the array under this name either way.
MOBILITY_ARRAY = "mean inverse reduced ion mobility array"
