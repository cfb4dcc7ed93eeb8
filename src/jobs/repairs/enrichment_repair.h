// Enrichment record repair (being written).
#pragma once

int fixEnrichmentRecords();
