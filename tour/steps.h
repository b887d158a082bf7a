#pragma once

class Guide;

/// Each tool's part of the tour, in the order in which main() walks them.
void tourLogin(Guide &guide);
void tourImportOriginals(Guide &guide);
void tourImportRetouched(Guide &guide);
void tourPhotoImport(Guide &guide);
void tourDistribution(Guide &guide);
void tourBatchDelete(Guide &guide);
void tourOrderList(Guide &guide);
void tourHistory(Guide &guide);
void tourRestoring(Guide &guide);
void tourCardCheck(Guide &guide);
