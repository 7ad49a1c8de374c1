// SPDX-License-Identifier: MIT
#include "app/catalogue/column_names.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QList<KnownColumn> &itemNames()
{
    static const QList<KnownColumn> known = {
        {{u"StockID"_s, u"ID"_s, false},
         {u"id"_s,          u"itemid"_s,        u"productid"_s,     u"articleid"_s, u"sku"_s,
          u"stockcode"_s,   u"itemno"_s,        u"itemnumber"_s,    u"articleno"_s, u"articlenumber"_s,
          u"productno"_s,   u"productnumber"_s, u"artikelnummer"_s, u"artikelnr"_s, u"artnr"_s,
          u"artikelid"_s,   u"reference"_s,     u"ref"_s,           u"référence"_s, u"réf"_s,
          u"identifiant"_s, u"referencia"_s,    u"número"_s}},
        {{u"StockName"_s, u"Name"_s, false},
         {u"name"_s,
          u"item"_s,
          u"itemname"_s,
          u"product"_s,
          u"productname"_s,
          u"article"_s,
          u"articlename"_s,
          u"description"_s,
          u"title"_s,
          u"bezeichnung"_s,
          u"artikel"_s,
          u"artikelname"_s,
          u"artikelbezeichnung"_s,
          u"produkt"_s,
          u"nom"_s,
          u"désignation"_s,
          u"designation"_s,
          u"libellé"_s,
          u"libelle"_s,
          u"produit"_s,
          u"nombre"_s,
          u"descripción"_s,
          u"descripcion"_s,
          u"artículo"_s,
          u"articulo"_s,
          u"producto"_s}},
        {{u"StockCategory"_s, u"Category"_s, false},
         {u"category"_s, u"categoryname"_s, u"group"_s, u"itemgroup"_s, u"productgroup"_s, u"department"_s,
          u"kategorie"_s, u"warengruppe"_s, u"gruppe"_s, u"catégorie"_s, u"categorie"_s, u"famille"_s, u"rayon"_s,
          u"groupe"_s, u"categoría"_s, u"categoria"_s, u"familia"_s, u"grupo"_s}},
        {{u"StockCost"_s, u"Unit cost"_s, true},
         {u"cost"_s, u"unitcost"_s}, // of many lists what the shop pays
         {u"price"_s,
          u"unitprice"_s,
          u"sellingprice"_s,
          u"sellprice"_s,
          u"salesprice"_s,
          u"saleprice"_s,
          u"retailprice"_s,
          u"retail"_s,
          u"rrp"_s,
          u"preis"_s,
          u"verkaufspreis"_s,
          u"verkauf"_s,
          u"vk"_s,
          u"vkpreis"_s,
          u"ladenpreis"_s,
          u"stückpreis"_s,
          u"einzelpreis"_s,
          u"prix"_s,
          u"prixunitaire"_s,
          u"prixdevente"_s,
          u"prixvente"_s,
          u"prixpublic"_s,
          u"precio"_s,
          u"preciounitario"_s,
          u"preciodeventa"_s,
          u"precioventa"_s,
          u"pvp"_s}},
        {{u"StockReorderLevel"_s, u"Reorder level"_s, true},
         {u"reorderlevel"_s, u"rlevel"_s, u"reorder"_s, u"reorderpoint"_s, u"minimum"_s, u"min"_s, u"minstock"_s,
          u"minimumstock"_s, u"mindestbestand"_s, u"meldebestand"_s, u"stockminimum"_s, u"stockmin"_s, u"seuil"_s,
          u"stockmínimo"_s, u"stockminimo"_s, u"mínimo"_s, u"minimo"_s}},
        {{u"StockAvailable"_s, u"Stock in hand"_s, true},
         {u"available"_s, u"avail"_s, u"stock"_s, u"stockinhand"_s, u"onhand"_s, u"instock"_s, u"quantity"_s, u"qty"_s,
          u"bestand"_s, u"lagerbestand"_s, u"menge"_s, u"anzahl"_s, u"quantité"_s, u"quantite"_s, u"qté"_s,
          u"enstock"_s, u"disponible"_s, u"cantidad"_s, u"existencias"_s}},
        {{u"StockUse"_s, u"Enabled or Disabled"_s, false},
         {u"use"_s, u"status"_s, u"state"_s, u"enabled"_s, u"verwendung"_s, u"statut"_s, u"état"_s, u"estado"_s}},
        {{u"Code"_s, u"Code"_s, false},
         {u"barcode"_s, u"ean"_s, u"ean13"_s, u"ean8"_s, u"eancode"_s, u"gtin"_s, u"upc"_s, u"upca"_s, u"scancode"_s,
          u"strichcode"_s, u"codebarres"_s, u"codebarre"_s, u"codeàbarres"_s, u"códigodebarras"_s, u"codigodebarras"_s,
          u"código"_s, u"codigo"_s}},
    };
    return known;
}

const QList<KnownColumn> &categoryNames()
{
    static const QList<KnownColumn> known = {
        {{u"CategoryName"_s, u"Category"_s, false}, itemNames().at(2).otherNames + QStringList{u"name"_s}}};
    return known;
}

const QList<KnownColumn> &codeNames()
{
    static const QList<KnownColumn> known = {
        {{u"Code"_s, u"Code"_s, false}, itemNames().at(7).otherNames},
        {{u"StockID"_s, u"ID of the item"_s, false}, itemNames().at(0).otherNames},
        {{u"Units"_s, u"Units a scan sells"_s, true},
         {u"unit"_s, u"quantity"_s, u"qty"_s, u"packsize"_s, u"einheiten"_s, u"menge"_s, u"anzahl"_s, u"unités"_s,
          u"unites"_s, u"quantité"_s, u"unidades"_s, u"cantidad"_s}},
    };
    return known;
}

} // namespace

const QList<KnownColumn> &knownColumns(ImportKind kind)
{
    switch (kind) {
    case ImportKind::Categories:
        return categoryNames();
    case ImportKind::Codes:
        return codeNames();
    default:
        return itemNames();
    }
}

bool isThePrice(const KnownColumn &column)
{
    return column.column.name == u"StockCost"_s;
}

bool mayBeAPrice(const QString &key)
{
    const auto speaksOf = [&](const QStringList &words) {
        return std::ranges::any_of(words, [&](const QString &word) { return key.contains(word); });
    };
    static const QStringList selling = {u"price"_s,   u"preis"_s,   u"prix"_s,  u"precio"_s, u"retail"_s,
                                        u"selling"_s, u"verkauf"_s, u"vente"_s, u"venta"_s};
    static const QStringList buying = {u"cost"_s,    u"purchas"_s, u"buy"_s,      u"wholesale"_s, u"supplier"_s,
                                       u"einkauf"_s, u"ekpreis"_s, u"preisek"_s,  u"bezug"_s,     u"achat"_s,
                                       u"revient"_s, u"degros"_s,  u"prixgros"_s, u"fourniss"_s,  u"compra"_s,
                                       u"coste"_s,   u"costo"_s,   u"mayor"_s,    u"proveedor"_s};
    return speaksOf(selling) && !speaksOf(buying);
}

} // namespace harrowby::app
