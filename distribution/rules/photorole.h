#pragma once

/// What a copied photo is for its order; says which sub-folder it fills.
enum class PhotoRole {
    Retouched,    ///< 精修成品
    Thumbnail,    ///< 成品缩略图
    FinishedOnly, ///< 只要成品: the photo, and its thumbnail beside the others
    Finished,     ///< 成品
    Rejected,     ///< 汰片
    Archive,      ///< 入底
};
