// SPDX-License-Identifier: MIT
#include "emulator/content/subject.h"

namespace stowra_emulator {

// All titles differ. Some contain multibyte characters, and some contain special characters of XML
// or file names.
const std::vector<Subject>& Subjects() {
  static const std::vector<Subject> subjects = {
      {"chair",
       "chair seat furniture Stuhl chaise καρέκλα 椅子 كرسي",
       {"Oak Chair", "Gemütlicher Stuhl", "Chaise d’été", "Ξύλινη καρέκλα", "木の椅子", "كرسي خشبي",
        "🪑 Chair for Two", "Kitchen Chair", "Chair <No. 7> & Cushion", "Стул со спинкой"}},
      {"table",
       "table desk furniture Tisch bureau τραπέζι 机 طاولة",
       {"Round Table", "Großer Eßtisch", "Table à café", "Στρογγυλό τραπέζι", "低い机",
        "طاولة القهوة", "☕ Coffee Table", "Writing Desk", "Table 3/4 \"Duo\"", "Стол для кухни"}},
      {"sofa",
       "sofa couch seat furniture Sofa canapé καναπές ソファ أريكة",
       {"Corner Sofa", "Schlafsofa für Gäste", "Canapé rêveur", "Μεγάλος καναπές", "青いソファ",
        "أريكة زرقاء", "🛋 Sofa in Blue", "Sofa for Three", "Sofa 100% Wool; Washed",
        "Мягкий диван"}},
      {"bed",
       "bed furniture Bett lit κρεβάτι ベッド سرير",
       {"Double Bed", "Bett mit Rückenlehne", "Lit à deux places", "Διπλό κρεβάτι", "子供のベッド",
        "سرير مزدوج", "🛏 Guest Bed", "Day Bed", "Bed + Drawers = Room?", "Кровать у окна"}},
      {"shelf",
       "shelf bookcase furniture Regal étagère ράφι 本棚 رف",
       {"Open Shelf", "Bücherregal für Räume", "Étagère légère", "Ράφι βιβλιοθήκης", "古い本棚",
        "رف الكتب", "📚 Bookcase", "Tall Shelf", "Shelf 'A' & Shelf 'B'", "Книжная полка"}},
      {"lamp",
       "lamp light Lampe lampe λάμπα ランプ مصباح",
       {"Floor Lamp", "Stehlampe fürs Büro", "Lampe de théâtre", "Λάμπα δαπέδου", "紙のランプ",
        "مصباح أرضي", "💡 Bright Lamp", "Reading Lamp", "Lamp #5 @ Home", "Лампа для чтения"}},
      {"house",
       "house home building Haus maison σπίτι 家 بيت",
       {"Small House", "Häuschen am See", "Maison à l’île", "Λευκό σπίτι", "山の家", "بيت صغير",
        "🏠 House with a View", "Brick House", "House {A|B} \\ Garden", "Дом у реки"}},
      {"tower",
       "tower building high-rise Turm tour πύργος 塔 برج",
       {"City Tower", "Büroturm München", "Tour de l’été", "Ψηλός πύργος", "五重の塔", "برج عال",
        "🏙 Tower Block", "Watch Tower", "Tower >100 m & <200 m", "Башня в городе"}},
      {"car",
       "car vehicle Auto voiture αυτοκίνητο 車 سيارة",
       {"Family Car", "Kleines Elektroauto", "Voiture électrique", "Παλιό αυτοκίνητο", "赤い車",
        "سيارة حمراء", "🚗 City Car", "Delivery Van", "Car: 4 Doors; 5 Seats", "Машина у дома"}},
      {"tree",
       "tree plant garden Baum arbre δέντρο 木 شجرة",
       {"Old Tree", "Kirschbaum in Blüte", "Arbre à pêches", "Ψηλό δέντρο", "桜の木", "شجرة عالية",
        "🌳 Round Tree", "Garden Tree", "Tree & Tree & Tree", "Дерево у озера"}},
  };
  return subjects;
}

}  // namespace stowra_emulator
