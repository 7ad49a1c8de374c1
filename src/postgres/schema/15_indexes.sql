-- SPDX-License-Identifier: MIT
-- One index for each way in which the statements look for rows, and none that holds StockAvailable, in its columns or its
-- condition: the server could not change such a row in its place. Nulls come first, as in a store file, and rows that are
-- equal as they were added. The texts of one entry have 2,600 bytes together (src/postgres/schema.cpp knows these indexes).

create index if not exists harrowby_stock_id on harrowby.StockList (StockID);
create index if not exists harrowby_stock_id_upper on harrowby.StockList (upper(StockID));
create index if not exists harrowby_stock_id_like on harrowby.StockList (lower(StockID));
create index if not exists harrowby_stock_name_upper on harrowby.StockList (upper(StockName));
create index if not exists harrowby_stock_page on harrowby.StockList (StockName nulls first, rowid_)
    where StockUse = 'Enabled';
create index if not exists harrowby_stock_category
    on harrowby.StockList (StockCategory, StockName nulls first, rowid_);
create index if not exists harrowby_category_name on harrowby.InventoryCategory (CategoryName nulls first, rowid_);
create index if not exists harrowby_purchase_id on harrowby.PurchaseCart (PurchaseID nulls first, rowid_);
create index if not exists harrowby_purchase_day on harrowby.PurchaseCart
    (substr(PurchasedDate, 1, 6) nulls first, Users nulls first, PurchasedItemsCost nulls first,
     PurchasedDate nulls first, rowid_);
create index if not exists harrowby_usage_time on harrowby.SysUsage (Dates nulls first, rowid_);
create index if not exists harrowby_user_name on harrowby.Users (upper(Username));
