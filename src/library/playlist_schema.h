#pragma once

namespace brindlecast {

// Makes what is missing and changes nothing that is there. The file carries no version.
inline constexpr const char* kLibrarySchema = R"sql(
CREATE TABLE IF NOT EXISTS playlist (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    file_path TEXT UNIQUE NOT NULL,
    file_name TEXT,
    file_size INTEGER DEFAULT 0,
    duration REAL DEFAULT 0,
    file_date INTEGER DEFAULT 0,
    codec_info TEXT,
    sort_order INTEGER DEFAULT 0
);
CREATE INDEX IF NOT EXISTS idx_sort_order ON playlist(sort_order);
CREATE INDEX IF NOT EXISTS idx_file_path ON playlist(file_path);

-- 즐겨찾기 그룹 테이블
CREATE TABLE IF NOT EXISTS favorite_groups (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    name TEXT UNIQUE NOT NULL,
    sort_order INTEGER DEFAULT 0
);

-- 즐겨찾기 아이템 테이블
CREATE TABLE IF NOT EXISTS favorite_items (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    group_id INTEGER NOT NULL,
    file_path TEXT NOT NULL,
    file_name TEXT,
    position REAL DEFAULT 0,
    sort_order INTEGER DEFAULT 0,
    FOREIGN KEY (group_id) REFERENCES favorite_groups(id) ON DELETE CASCADE,
    UNIQUE(group_id, file_path)
);
CREATE INDEX IF NOT EXISTS idx_fav_items_group ON favorite_items(group_id);

-- 최근 파일 테이블 (MRU)
CREATE TABLE IF NOT EXISTS recent_files (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    file_path TEXT UNIQUE NOT NULL,
    file_name TEXT,
    accessed_at INTEGER DEFAULT 0
);
CREATE INDEX IF NOT EXISTS idx_recent_accessed ON recent_files(accessed_at DESC);
)sql";

} // namespace brindlecast
